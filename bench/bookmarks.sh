#!/usr/bin/env bash
# Bookmark import benchmark: a Chromium-style export of 5,000 links in 100 folders, each link
# with its icon, read, worked out and written into an empty link store by the program
# (tarnwick_bookmarks_bench), and the same file read by Python's html.parser for comparison.
#
#   bench/bookmarks.sh [BUILD_DIR]      (default build-bench, a Release build)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}

if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DTARNWICK_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target tarnwick_bookmarks_bench >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
python3 "$here/make_bookmarks.py" 50 100 >"$work/bookmarks.html"
echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
"$build/bin/tarnwick_bookmarks_bench" "$work/bookmarks.html" 7
python3 "$here/bookmarks_reference.py" "$work/bookmarks.html" 7
