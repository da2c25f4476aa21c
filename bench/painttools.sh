#!/usr/bin/env bash
# Paint tools benchmark on an 18-megapixel picture (5184 x 3456): the Fill tool's flood fill,
# a Pencil drag of 1,000 mouse moves and Hand scrolling at 931% zoom in the real paint window
# (offscreen), and, for the fill, ImageMagick's flood fill of the same picture side by side.
#
#   bench/painttools.sh [BUILD_DIR]
#
# Tarnwick's fill is timed inside the program (the fill alone, best of 5). ImageMagick's is the
# wall time of "convert in.ppm -fill red -draw 'color X,Y floodfill' out.ppm" less that of a
# plain "convert in.ppm out.ppm", best of 3 each, so that reading and writing are left out alike.
#
# Needs (bench only): apt-get install -y imagemagick
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
w=5184
h=3456
runs=3

command -v convert >/dev/null || { echo "missing convert (apt-get install -y imagemagick)"; exit 2; }

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target tarnwick_painttools_bench >/dev/null
echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
"$build/bin/tarnwick_painttools_bench" "$w" "$h" 2>/dev/null

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# The same picture as the Tarnwick side's fill: white inside a black frame 3 pixels wide.
convert -size ${w}x${h} xc:white -fill none -stroke black -strokewidth 3 \
    -draw "rectangle 10,10 $((w - 11)),$((h - 11))" "$scratch/in.ppm"

now() { date +%s.%N; }
best_of() {
    local best=999999 start end t
    for _ in $(seq "$runs"); do
        start=$(now)
        "$@" >/dev/null 2>&1
        end=$(now)
        t=$(echo "$end - $start" | bc -l)
        if (($(echo "$t < $best" | bc -l))); then best=$t; fi
    done
    echo "$best"
}
base=$(best_of convert "$scratch/in.ppm" "$scratch/out.ppm")
fill=$(best_of convert "$scratch/in.ppm" -fill red -draw "color $((w / 2)),$((h / 4)) floodfill" "$scratch/out.ppm")
printf 'ImageMagick fill: %.0f ms (%.2f s total less %.2f s reading and writing)\n' \
    "$(echo "($fill - $base) * 1000" | bc -l)" "$fill" "$base"
