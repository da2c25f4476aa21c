#!/bin/bash
# Web space browser benchmark: one directory of 5,000 entries (4,900 files of a few bytes to a
# few kilobytes and 100 directories) on a local pyftpdlib server, listed into the FTP tab's lv
# by ReloadFTPList. Prints the numbers that bench/README.md records.
#
#   bench/browser.sh [BUILD_DIR] [RUNS]   (default: build, 10; build the bench program first:
#                                          cmake --build BUILD_DIR --target tarnwick_browser_bench)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build}
runs=${2:-10}
bench="$build/bin/tarnwick_browser_bench"
[ -x "$bench" ] || { echo "build $bench first (cmake --build $build --target tarnwick_browser_bench)"; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/tarnwick-browser-XXXXXX")
server_pid=
cleanup() {
    [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$work/home/big"
python3 - "$work/home/big" <<'PY'
import os, sys
base = sys.argv[1]
for i in range(100):
    os.mkdir(os.path.join(base, "folder %03d" % i))
for i in range(4900):
    with open(os.path.join(base, "photo_%04d.jpg" % i), "wb") as f:
        f.write(b"x" * (i % 4096))
PY
/usr/bin/python3 "$source_dir/tests/common/ftp/ftpserver.py" --home "$work/home" \
    --user bench --password bench > "$work/server.out" 2>&1 &
server_pid=$!
for _ in $(seq 100); do grep -q '^PORT ' "$work/server.out" && break; sleep 0.1; done
port=$(awk '/^PORT /{print $2}' "$work/server.out")
[ -n "$port" ] || { cat "$work/server.out"; exit 1; }

echo "entries: $(ls -1 "$work/home/big" | wc -l)"
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$bench" "127.0.0.1:$port" bench bench /big "$runs"
