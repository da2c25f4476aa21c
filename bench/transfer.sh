#!/bin/bash
# Transfer benchmark: Tarnwick's upload path against curl, both against one local pyftpdlib
# server in one run, both timed from outside as whole processes (start, login, transfer, QUIT).
# The server holds every password check LOGIN_DELAY seconds (default 0.15), as a hosted
# server's check of a password does. Prints the numbers that bench/README.md records.
#
#   bench/transfer.sh [BUILD_DIR]      (default: build; the bench program must be built:
#                                       cmake --build BUILD_DIR --target tarnwick_transfer_bench)
#   RUNS=5 LOGIN_DELAY=0.15 bench/transfer.sh build-bench
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build}
bench="$build/bin/tarnwick_transfer_bench"
runs=${RUNS:-5}
delay=${LOGIN_DELAY:-0.15}
[ -x "$bench" ] || { echo "build $bench first (cmake --build $build --target tarnwick_transfer_bench)"; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/tarnwick-bench-XXXXXX")
server_pid=
cleanup() {
    [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$work/home" "$work/small"
/usr/bin/python3 "$source_dir/tests/common/ftp/ftpserver.py" --home "$work/home" \
    --user bench --password bench --login-delay "$delay" --login-log "$work/logins.log" \
    > "$work/server.out" 2>&1 &
server_pid=$!
for _ in $(seq 100); do grep -q '^PORT ' "$work/server.out" && break; sleep 0.1; done
port=$(awk '/^PORT /{print $2}' "$work/server.out")
[ -n "$port" ] || { cat "$work/server.out"; exit 1; }
server=127.0.0.1:$port
url=ftp://$server

now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
elapsed() { calc "$2 - $1"; }
best() { printf '%s\n' "$@" | sort -g | head -1; }
median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
logins() { [ -f "$work/logins.log" ] && wc -l < "$work/logins.log" || echo 0; }

export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg), login delay ${delay} s"

echo "== one file of 500 MB"
head -c $((500 * 1024 * 1024)) /dev/urandom > "$work/big.bin"
curl_runs=(); ours_runs=()
for run in $(seq "$runs"); do
    rm -f "$work/home/big.bin"
    t0=$(now); curl -s -S -u bench:bench -T "$work/big.bin" "$url/big.bin"; t1=$(now)
    curl_runs+=("$(elapsed "$t0" "$t1")")
    cmp -s "$work/big.bin" "$work/home/big.bin" || { echo "curl copy differs"; exit 1; }
    rm -f "$work/home/big.bin"
    t0=$(now); "$bench" "$server" bench bench one "$work/big.bin" > /dev/null 2>&1; t1=$(now)
    ours_runs+=("$(elapsed "$t0" "$t1")")
    cmp -s "$work/big.bin" "$work/home/big.bin" || { echo "Tarnwick copy differs"; exit 1; }
    echo "run $run: curl -T ${curl_runs[-1]} s, Tarnwick ${ours_runs[-1]} s"
done
for pick in best median; do
    c=$($pick "${curl_runs[@]}"); o=$($pick "${ours_runs[@]}")
    printf '%s: curl -T %.3f s (%.0f MB/s), Tarnwick %.3f s (%.0f MB/s), Tarnwick at %.0f%% of curl\n' \
        "$pick" "$c" "$(calc "500 / $c")" "$o" "$(calc "500 / $o")" "$(calc "100 * $c / $o")"
done
rm -f "$work/big.bin" "$work/home/big.bin"

echo "== 200 files of 50 KB"
for i in $(seq -w 1 200); do head -c 51200 /dev/urandom > "$work/small/file_$i.bin"; done
# One curl process for all of them, keeping its connection: curl -T "{a,b,...}" URL/dir/
list=$(cd "$work" && ls small/file_*.bin | paste -sd, -)
curl_runs=(); ours_runs=(); py_runs=(); pyr_runs=()
for run in $(seq "$runs"); do
    rm -f "$work/home/"file_*.bin
    before=$(logins)
    t0=$(now); (cd "$work" && curl -s -S -u bench:bench -T "{$list}" "$url/"); t1=$(now)
    curl_runs+=("$(elapsed "$t0" "$t1")")
    curl_logins=$(( $(logins) - before ))
    [ "$(ls "$work/home/" | grep -c '^file_')" = 200 ] || { echo "curl: not all files arrived"; exit 1; }
    rm -f "$work/home/"file_*.bin
    before=$(logins)
    t0=$(now); "$bench" "$server" bench bench many "$work/small" > /dev/null 2>&1; t1=$(now)
    ours_runs+=("$(elapsed "$t0" "$t1")")
    ours_logins=$(( $(logins) - before ))
    [ "$(ls "$work/home/" | grep -c '^file_')" = 200 ] || { echo "Tarnwick: not all files arrived"; exit 1; }
    for f in "$work/small/"*.bin; do cmp -s "$f" "$work/home/$(basename "$f")" || { echo "$f differs"; exit 1; }; done
    rm -f "$work/home/"file_*.bin
    before=$(logins)
    t0=$(now); (cd "$work" && /usr/bin/python3 "$here/ftp_send.py" 127.0.0.1 "$port" bench bench / small/file_*.bin); t1=$(now)
    py_runs+=("$(elapsed "$t0" "$t1")")
    py_logins=$(( $(logins) - before ))
    [ "$(ls "$work/home/" | grep -c '^file_')" = 200 ] || { echo "ftp_send.py: not all files arrived"; exit 1; }
    rm -f "$work/home/"file_*.bin
    t0=$(now); (cd "$work" && /usr/bin/python3 "$here/ftp_send.py" --rename 127.0.0.1 "$port" bench bench / small/file_*.bin); t1=$(now)
    pyr_runs+=("$(elapsed "$t0" "$t1")")
    [ "$(ls "$work/home/" | grep -c '^file_.*bin$')" = 200 ] || { echo "ftp_send.py --rename: not all files arrived"; exit 1; }
    echo "run $run: one curl process ${curl_runs[-1]} s ($curl_logins login), one ftplib process ${py_runs[-1]} s ($py_logins login), the same with renames ${pyr_runs[-1]} s, Tarnwick ${ours_runs[-1]} s ($ours_logins logins)"
done
for pick in best median; do
    c=$($pick "${curl_runs[@]}"); o=$($pick "${ours_runs[@]}"); p=$($pick "${py_runs[@]}"); r=$($pick "${pyr_runs[@]}")
    printf '%s: one curl process %.3f s, one ftplib process %.3f s (%.3f s with renames), Tarnwick %.3f s: %.2fx the time of curl, %.2fx of ftplib, %.2fx of ftplib with renames\n' \
        "$pick" "$c" "$p" "$r" "$o" "$(calc "$o / $c")" "$(calc "$o / $p")" "$(calc "$o / $r")"
done

echo "== 1 GB with the progress dialog on screen, cancelled half way"
head -c $((1024 * 1024 * 1024)) /dev/zero > "$work/huge.bin"
"$bench" "$server" bench bench live "$work/huge.bin" 2>/dev/null
ls "$work/home" | grep -q '^huge.bin$' && echo "a file named huge.bin was left on the server" || echo "no huge.bin on the server after the cancel"
