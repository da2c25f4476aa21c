#!/usr/bin/env bash
# Photo sizing benchmark: the "Sml_" and "Lrg_" copies of every camera photograph of Debian's
# mate-backgrounds package at 15% and 30%, made by Tarnwick and by vipsthumbnail in one run, the
# same work on both sides:
#   - one decode of each photo: Tarnwick sizes both copies from one decode; the anchor makes the
#     Lrg_ copy with vipsthumbnail from the photo and the Sml_ copy with a second, small
#     vipsthumbnail from that Lrg_ file;
#   - the same files at the same pixel sizes (checked below), JPEG quality 100, 4:2:0 chroma on
#     both sides;
#   - the same number of threads: THREADS pictures at once on both sides, each single-threaded
#     (vips with VIPS_CONCURRENCY=1);
#   - both timed from outside the process by /usr/bin/time, best and median of RUNS runs, taken
#     in turns.
# Next to the speed, the quality: the PSNR of every copy against a Lanczos reference made from
# the photo's full decode (bench/photo_quality.py, Pillow), for both sides. Last, the peak
# memory of Tarnwick sizing one 18-megapixel photo alone.
#
#   bench/photo-sizing.sh [BUILD_DIR] [RUNS]
#
# Needs (bench only, not for the program): apt-get install -y mate-backgrounds libvips-tools
# python3-numpy python3-pil time bc
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
runs=${2:-3}
photos=/usr/share/backgrounds/mate
small=15
large=30
threads=${THREADS:-$(nproc)}
python=/usr/bin/python3

for tool in vipsthumbnail vipsheader vips bc /usr/bin/time "$python"; do
    command -v "$tool" >/dev/null || { echo "missing $tool (see the head of this script)"; exit 2; }
done
"$python" -c 'import numpy, PIL' 2>/dev/null || { echo "missing python3-numpy or python3-pil"; exit 2; }
[ -d "$photos" ] || { echo "missing $photos (apt-get install -y mate-backgrounds)"; exit 2; }

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target tarnwick_photo_bench >/dev/null
bench="$build/bin/tarnwick_photo_bench"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/work"
count=0
pixels=0
while IFS= read -r photo; do
    name=$(basename "$photo")
    cp "$photo" "$scratch/work/00050_$name"
    pixels=$((pixels + $(vipsheader -f width "$photo") * $(vipsheader -f height "$photo")))
    count=$((count + 1))
done < <(find "$photos" -iname '*.jpg' | sort)
echo "photos: $count camera JPEGs, $((pixels / 1000000)) megapixels in all; $threads pictures at once on both sides; load average $(cut -d' ' -f1-3 /proc/loadavg)"
cat "$scratch"/work/* >/dev/null # the page cache warm for both

# The anchor's jobs: the box of each copy is Tarnwick's size (a side times the percentage,
# rounded), forced with "!" so that both sides make the same pixels.
jobs="$scratch/vips.jobs"
: > "$jobs"
for photo in "$scratch"/work/*; do
    name=$(basename "$photo")
    w=$(vipsheader -f width "$photo"); h=$(vipsheader -f height "$photo")
    printf '%s\0%s\0%s\0' "$photo" "$(( (w * large + 50) / 100 ))x$(( (h * large + 50) / 100 ))!" \
        "$(( (w * small + 50) / 100 ))x$(( (h * small + 50) / 100 ))!" >> "$jobs"
done
anchor() { # OUT
    VIPS_CONCURRENCY=1 OUT="$1" xargs -0 -n 3 -P "$threads" sh -c '
        name=$(basename "$0")
        vipsthumbnail "$0" --size "$1" -o "$OUT/Lrg_$name[Q=100,subsample-mode=on]" &&
        vipsthumbnail "$OUT/Lrg_$name" --size "$2" -o "$OUT/Sml_$name[Q=100,subsample-mode=on]"
    ' < "$jobs"
}
export -f anchor
export jobs threads

cpu() { echo "$1 + $2" | bc; }
declare -a t_wall t_cpu v_wall v_cpu
t_mem=0; v_mem=0
for ((run = 0; run < runs; ++run)); do
    rm -rf "$scratch/tarnwick" "$scratch/vips"; mkdir -p "$scratch/tarnwick" "$scratch/vips"
    /usr/bin/time -f "%e %U %S %M" -o "$scratch/t.time" \
        "$bench" "$scratch/work" "$scratch/tarnwick" "$small" "$large" "$threads" >/dev/null
    read -r e u s m < "$scratch/t.time"; t_wall+=("$e"); t_cpu+=("$(cpu "$u" "$s")"); t_mem=$m
    /usr/bin/time -f "%e %U %S %M" -o "$scratch/v.time" bash -c 'anchor "$0"' "$scratch/vips"
    read -r e u s m < "$scratch/v.time"; v_wall+=("$e"); v_cpu+=("$(cpu "$u" "$s")"); v_mem=$m
done
best() { printf '%s\n' "$@" | sort -g | head -1; }
median() { printf '%s\n' "$@" | sort -g | sed -n "$(( ($# + 1) / 2 ))p"; }

# Both sides made the same files at the same pixel sizes.
for side in tarnwick vips; do
    (cd "$scratch/$side" && ls) > "$scratch/$side.list"
done
diff -q "$scratch/tarnwick.list" "$scratch/vips.list" >/dev/null ||
    { echo "the two sides made different files"; diff "$scratch/tarnwick.list" "$scratch/vips.list"; exit 1; }
[ "$(wc -l < "$scratch/tarnwick.list")" -eq $((2 * count)) ] || { echo "copies missing"; exit 1; }
while IFS= read -r file; do
    a=$(vipsheader -f width "$scratch/tarnwick/$file")x$(vipsheader -f height "$scratch/tarnwick/$file")
    b=$(vipsheader -f width "$scratch/vips/$file")x$(vipsheader -f height "$scratch/vips/$file")
    [ "$a" = "$b" ] || { echo "$file: $a against $b"; exit 1; }
done < "$scratch/tarnwick.list"

echo "speed, $runs runs each (best / median):"
echo "  tarnwick:      wall $(best "${t_wall[@]}") / $(median "${t_wall[@]}") s, CPU $(best "${t_cpu[@]}") / $(median "${t_cpu[@]}") s, peak ${t_mem} kB"
echo "  vipsthumbnail: wall $(best "${v_wall[@]}") / $(median "${v_wall[@]}") s, CPU $(best "${v_cpu[@]}") / $(median "${v_cpu[@]}") s, peak of one process ${v_mem} kB"

echo "quality, PSNR in dB against a Lanczos reference from the full decode (Tarnwick / vips):"
worst=100
for photo in "$scratch"/work/*; do
    name=$(basename "$photo")
    read -r _ size tl < <("$python" "$here/photo_quality.py" "$photo" "$scratch/tarnwick/Lrg_$name")
    read -r _ _ vl < <("$python" "$here/photo_quality.py" "$photo" "$scratch/vips/Lrg_$name")
    read -r _ ssize ts < <("$python" "$here/photo_quality.py" "$photo" "$scratch/tarnwick/Sml_$name")
    read -r _ _ vs < <("$python" "$here/photo_quality.py" "$photo" "$scratch/vips/Sml_$name")
    printf '  %-36s Lrg_ %-10s %6s / %6s   Sml_ %-9s %6s / %6s\n' "${name#00050_}" "$size" "$tl" "$vl" "$ssize" "$ts" "$vs"
    for pair in "$tl $vl" "$ts $vs"; do
        set -- $pair
        gap=$(echo "$1 - $2" | bc)
        worst=$(echo "if ($gap < $worst) $gap else $worst" | bc)
    done
done
echo "  closest to the anchor from below: $worst dB (goal: no copy more than 1 dB under vips)"

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
