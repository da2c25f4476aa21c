#!/bin/bash
# Backup Files benchmark, side by side in one run:
#  1. Scan & Backup of a list of 10,000 entries, none changed, on the real page against a local
#     pyftpdlib server; and the walk's look-ups of the list read once vs. read from its start for
#     every entry.
#  2. A folder of about 1 GB packed into a cabinet by the program (RunCab) and by `gcab -c -z`
#     on the same files, alternately, with the wall time and the peak memory of each process
#     (/usr/bin/time); a folder of a quarter of the size as well, to show that memory stays flat.
#  3. The event loop's longest pause while the cabinet is made, and how soon a cancel ends it.
#
#   bench/backup.sh [BUILD_DIR] [RUNS]   (default: build, 2; build the bench program first:
#                                         cmake --build BUILD_DIR --target tarnwick_backup_bench)
# Bench-only packages: gcab (already in tools/packages.txt), time (for /usr/bin/time).
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build}
runs=${2:-2}
bench="$build/bin/tarnwick_backup_bench"
[ -x "$bench" ] || { echo "build $bench first (cmake --build $build --target tarnwick_backup_bench)"; exit 1; }
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}

work=$(mktemp -d "${TMPDIR:-/tmp}/tarnwick-backup-XXXXXX")
server_pid=
cleanup() {
    [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

echo "== Scan & Backup, 10,000 entries, nothing changed"
mkdir -p "$work/home"
/usr/bin/python3 "$source_dir/tests/common/ftp/ftpserver.py" --home "$work/home" \
    --user bench --password bench > "$work/server.out" 2>&1 &
server_pid=$!
for _ in $(seq 100); do grep -q '^PORT ' "$work/server.out" && break; sleep 0.1; done
port=$(awk '/^PORT /{print $2}' "$work/server.out")
[ -n "$port" ] || { cat "$work/server.out"; exit 1; }
for run in $(seq "$runs"); do
    "$bench" scan "127.0.0.1:$port" bench bench 10000
done
kill "$server_pid"; server_pid=

# The folders: half text that compresses well, half bytes that don't, in files of 1 to 64 MB
# in nested folders.
make_folder() {
    /usr/bin/python3 - "$1" "$2" <<'PY'
import os, random, sys
root, total = sys.argv[1], int(sys.argv[2]) * 1024 * 1024
rng = random.Random(20260105)
words = [("word%d" % i).encode() for i in range(5000)]
text = b" ".join(rng.choice(words) for _ in range(400000))[: 1 << 21]
made, n = 0, 0
while made < total:
    size = min(total - made, rng.choice([1, 4, 16, 64]) * 1024 * 1024)
    folder = os.path.join(root, "part%d" % (n % 4), "sub%d" % (n % 3))
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "file%03d.%s" % (n, "txt" if n % 2 else "bin")), "wb") as f:
        left = size
        while left > 0:
            chunk = text if n % 2 else os.urandom(1 << 21)
            f.write(chunk[:left])
            left -= len(chunk[:left])
    made += size
    n += 1
PY
}

for size in 256 1024; do
    folder="$work/Folder_${size}MB"
    make_folder "$folder" "$size"
    echo "== Cabinet of $(du -sm "$folder" | cut -f1) MB in $(find "$folder" -type f | wc -l) files"
    for run in $(seq "$runs"); do
        /usr/bin/time -f "   program: %e s wall, %U s user, %M KB peak" \
            "$bench" cabinet "$folder"
        rm -f "$folder"/DirFile_*.cab
        (cd "$folder" && find . -type f -printf '%P\n' | sort > "$work/files.txt" &&
            /usr/bin/time -f "   gcab -c -z: %e s wall, %U s user, %M KB peak" \
                gcab -c -z "$work/gcab.cab" $(cat "$work/files.txt"))
        ls -l "$work/gcab.cab" | awk '{print "   gcab cabinet: " $5 " bytes"}'
        rm -f "$work/gcab.cab"
    done
done

echo "== Cancel while the 1 GB cabinet is made"
for after in 500 2000; do
    "$bench" cancel "$work/Folder_1024MB" "$after"
done
