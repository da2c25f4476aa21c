#!/usr/bin/env bash
# Portal benchmark: the build of a portal page of 100 Categories and 5,000 Page Links through the
# default templates into Portal.htm, without the upload, timed over seven runs (the store's
# records are read from the disk in every run, as the build does).
#
#   bench/portal.sh [BUILD_DIR]      (default build-bench, a Release build)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}

if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DTARNWICK_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target tarnwick_portal_bench >/dev/null
echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
"$build/bin/tarnwick_portal_bench" "$build/share/tarnwick" 100 50 7
