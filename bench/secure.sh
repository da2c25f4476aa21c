#!/bin/bash
# Encrypted transfer benchmark: one file of 500 MB sent by Tarnwick and by curl -T over the same
# protocol to the same local server in one run: FTPS (pyftpdlib with TLS, the test server) and
# SFTP (the asyncssh test server). Both sides timed from outside as whole processes (start,
# handshake, login, transfer, goodbye). Prints the numbers that bench/README.md records.
#
#   bench/secure.sh [BUILD_DIR]     (default: build; the bench program must be built:
#                                    cmake --build BUILD_DIR --target tarnwick_transfer_bench)
#   RUNS=1 SIZE_MB=500 bench/secure.sh build
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build}
bench="$build/bin/tarnwick_transfer_bench"
runs=${RUNS:-1}
size_mb=${SIZE_MB:-500}
[ -x "$bench" ] || { echo "build $bench first (cmake --build $build --target tarnwick_transfer_bench)"; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/tarnwick-secure-bench-XXXXXX")
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    rm -rf "$work"
}
trap cleanup EXIT

now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
elapsed() { calc "$2 - $1"; }
wait_port() { for _ in $(seq 100); do grep -q '^PORT ' "$1" && break; sleep 0.1; done; awk '/^PORT /{print $2}' "$1"; }

# Tarnwick runs with a HOME of its own, which trusts the FTPS server's certificate and knows the
# SFTP server's host key, as a user who accepted them once.
export HOME="$work/user"
mkdir -p "$HOME/.config/Tarnwick" "$HOME/.ssh" "$work/ftps" "$work/sftp"
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}

/usr/bin/python3 "$source_dir/tests/common/ftp/ftpserver.py" --home "$work/ftps" \
    --user bench --password bench --certificate "$work/cert.pem" > "$work/ftps.out" 2>&1 &
pids+=($!)
/usr/bin/python3 "$source_dir/tests/common/ftp/sftpserver.py" --home "$work/sftp" \
    --user bench --password bench --host-key "$work/hostkey" > "$work/sftp.out" 2>&1 &
pids+=($!)
ftps_port=$(wait_port "$work/ftps.out"); [ -n "$ftps_port" ] || { cat "$work/ftps.out"; exit 1; }
sftp_port=$(wait_port "$work/sftp.out"); [ -n "$sftp_port" ] || { cat "$work/sftp.out"; exit 1; }

fingerprint=$(openssl x509 -in "$work/cert.pem" -noout -fingerprint -sha256 | cut -d= -f2)
printf '[Settings]\nTrustedCertificates="127.0.0.1:%s=%s"\n' "$ftps_port" "$fingerprint" \
    > "$HOME/.config/Tarnwick/Tarnwick.conf"
chmod 600 "$HOME/.config/Tarnwick/Tarnwick.conf"
echo "[127.0.0.1]:$sftp_port $(cut -d' ' -f1-2 "$work/hostkey.pub")" > "$HOME/.ssh/known_hosts"

echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg), ${size_mb} MB, $runs run(s)"
head -c $((size_mb * 1024 * 1024)) /dev/urandom > "$work/big.bin"

run_pair() { # name, served folder, curl arguments..., then -- and Tarnwick's server field
    local name=$1 folder=$2; shift 2
    local curl_args=() field
    while [ "$1" != -- ]; do curl_args+=("$1"); shift; done
    field=$2
    for run in $(seq "$runs"); do
        rm -f "$folder/big.bin"
        t0=$(now); curl -s -S -u bench:bench "${curl_args[@]}" -T "$work/big.bin"; t1=$(now)
        c=$(elapsed "$t0" "$t1")
        cmp -s "$work/big.bin" "$folder/big.bin" || { echo "$name: curl's copy differs"; exit 1; }
        rm -f "$folder/big.bin"
        t0=$(now); "$bench" "$field" bench bench one "$work/big.bin" > /dev/null 2>&1; t1=$(now)
        o=$(elapsed "$t0" "$t1")
        cmp -s "$work/big.bin" "$folder/big.bin" || { echo "$name: Tarnwick's copy differs"; exit 1; }
        printf '%s run %d: curl -T %.2f s (%.0f MB/s), Tarnwick %.2f s (%.0f MB/s), Tarnwick at %.0f%% of curl\n' \
            "$name" "$run" "$c" "$(calc "$size_mb / $c")" "$o" "$(calc "$size_mb / $o")" "$(calc "100 * $c / $o")"
    done
}

run_pair FTPS "$work/ftps" --ssl-reqd --cacert "$work/cert.pem" "ftp://127.0.0.1:$ftps_port/big.bin" \
    -- "ftps://127.0.0.1:$ftps_port"
run_pair SFTP "$work/sftp" --insecure "sftp://127.0.0.1:$sftp_port/big.bin" \
    -- "sftp://127.0.0.1:$sftp_port"
