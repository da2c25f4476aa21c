#!/usr/bin/env bash
# Photo sizing benchmark: the "Sml_" and "Lrg_" copies of every camera photograph of Debian's
# mate-backgrounds package at 15% and 30%, quality 100, made by Tarnwick and by vipsthumbnail
# in one run, both using every core; then the peak memory of Tarnwick on one 18-megapixel photo.
#
#   bench/photo-sizing.sh [BUILD_DIR]
#
# Needs (bench only, not for the program): apt-get install -y mate-backgrounds libvips-tools
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
photos=/usr/share/backgrounds/mate
small=15
large=30
cores=$(nproc)

for tool in vipsthumbnail vips bc /usr/bin/time; do
    command -v "$tool" >/dev/null || { echo "missing $tool (apt-get install -y libvips-tools time)"; exit 2; }
done
[ -d "$photos" ] || { echo "missing $photos (apt-get install -y mate-backgrounds)"; exit 2; }

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target tarnwick_photo_bench >/dev/null
bench="$build/bin/tarnwick_photo_bench"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/work" "$scratch/tarnwick" "$scratch/vips"
count=0
pixels=0
while IFS= read -r photo; do
    name=$(basename "$photo")
    cp "$photo" "$scratch/work/00050_$name"
    size=$(vipsheader -f width "$photo")x$(vipsheader -f height "$photo")
    pixels=$((pixels + ${size%x*} * ${size#*x}))
    count=$((count + 1))
done < <(find "$photos" -iname '*.jpg' | sort)
echo "photos: $count camera JPEGs, $((pixels / 1000000)) megapixels in all, $cores cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"

# Warm the page cache for both.
cat "$scratch"/work/* >/dev/null

/usr/bin/time -f "%e %U %S %M" -o "$scratch/tarnwick.time" \
    "$bench" "$scratch/work" "$scratch/tarnwick" "$small" "$large" "$cores" >/dev/null
read -r t_time t_user t_sys t_mem < "$scratch/tarnwick.time"
rm -rf "$scratch/tarnwick1"
/usr/bin/time -f "%e %U %S %M" -o "$scratch/tarnwick1.time" \
    "$bench" "$scratch/work" "$scratch/tarnwick1" "$small" "$large" 1 >/dev/null
read -r o_time o_user o_sys o_mem < "$scratch/tarnwick1.time"

# vipsthumbnail: the same two sizes of each photo (the size box of each copy, so the sides
# come out as Tarnwick's), every core busy.
jobs="$scratch/vips.jobs"
: > "$jobs"
for photo in "$scratch"/work/*; do
    w=$(vipsheader -f width "$photo"); h=$(vipsheader -f height "$photo")
    for pair in "Sml_:$small" "Lrg_:$large"; do
        prefix=${pair%%:*}; pct=${pair#*:}
        sw=$(( (w * pct + 50) / 100 )); sh=$(( (h * pct + 50) / 100 ))
        printf '%s\0%s\0%s\0' "$photo" "${sw}x${sh}" "$scratch/vips/$prefix%s.jpg[Q=100]" >> "$jobs"
    done
done
/usr/bin/time -f "%e %U %S %M" -o "$scratch/vips.time" \
    xargs -0 -n 3 -P "$cores" sh -c 'vipsthumbnail "$0" --size "$1" -o "$2"' < "$jobs"
read -r v_time v_user v_sys v_mem < "$scratch/vips.time"

made_t=$(find "$scratch/tarnwick" -name '*.jpg' | wc -l)
made_v=$(find "$scratch/vips" -name '*.jpg' | wc -l)
cpu() { echo "$1 + $2" | bc; }
echo "tarnwick:      $made_t copies in ${t_time} s wall, $(cpu "$t_user" "$t_sys") s CPU, peak ${t_mem} kB"
echo "tarnwick, one picture at a time: ${o_time} s wall, $(cpu "$o_user" "$o_sys") s CPU, peak ${o_mem} kB"
echo "vipsthumbnail: $made_v copies in ${v_time} s wall, $(cpu "$v_user" "$v_sys") s CPU (peak of one process ${v_mem} kB)"
echo "load average before the 18 MP run: $(cut -d' ' -f1-3 /proc/loadavg)"

# One photo of 18 megapixels: the largest photograph of the package, 5640 x 3172 (17.9 MP),
# scaled up by 1% with vips to 5696 x 3204 (18.25 MP), alone in a working folder.
mkdir -p "$scratch/big" "$scratch/big-out"
vips resize "$photos/abstract/Elephants_5640x3172.jpg" "$scratch/big/00050_Big.jpg[Q=95]" 1.01
big=$(vipsheader -f width "$scratch/big/00050_Big.jpg")x$(vipsheader -f height "$scratch/big/00050_Big.jpg")
/usr/bin/time -f "%e %U %S %M" -o "$scratch/big.time" \
    "$bench" "$scratch/big" "$scratch/big-out" "$small" "$large" 1 >/dev/null
read -r b_time b_user b_sys b_mem < "$scratch/big.time"
echo "one $big photo: ${b_time} s wall, $(cpu "$b_user" "$b_sys") s CPU, peak ${b_mem} kB (limit 409600 kB)"
[ "$b_mem" -lt 409600 ]
