#!/usr/bin/env bash
# HEIC benchmark: a folder of 20 HEIC photos of 12 megapixels (4032 x 3024, made from the camera
# photographs of Debian's mate-backgrounds with vips and heif-enc, x265's fastest preset), each
# taken to its "Sml_" and "Lrg_" copies at 15% and 30%, JPEG quality 100, 4:2:0, in one run by:
#   1. Tarnwick as the program does it: each HEIC put onto the Ready to Send list as a JPEG
#      (the copy button: THREADS at most at once, within the sizing budget), then the sizing of
#      the list (THREADS pictures at once);
#   2. heif-convert to a JPEG of quality 100, then the JPEG path of photo-sizing.sh's anchor
#      (vipsthumbnail for Lrg_, a second vipsthumbnail from it for Sml_), THREADS at once;
#   3. vipsthumbnail reading the HEIC itself (libvips with libheif) for Lrg_, and Sml_ from it,
#      THREADS at once.
# All timed from outside the process with /usr/bin/time (wall and user + system), best and
# median of RUNS. Then the peak memory of Tarnwick on one 50-megapixel HEIC (8192 x 6144) and
# one 50-megapixel JPEG of the same picture, against the sizing budget of 320 MB.
#
#   bench/photo-heic.sh [BUILD_DIR] [RUNS]
#
# BENCH=path/to/tarnwick_photo_bench uses that program instead of building one in BUILD_DIR.
# COUNT=n makes n photos instead of 20 (a quicker look on a busy machine).
#
# Needs (bench only): apt-get install -y mate-backgrounds libvips-tools libheif-examples time bc
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
runs=${2:-3}
threads=${THREADS:-$(nproc)}
count=${COUNT:-20}
photos=/usr/share/backgrounds/mate

for tool in vipsthumbnail vips heif-enc heif-convert bc /usr/bin/time; do
    command -v "$tool" >/dev/null || { echo "missing $tool (see the head of this script)"; exit 2; }
done
# BENCH=path runs a tarnwick_photo_bench built elsewhere (say, in the tests' build) instead.
bench=${BENCH:-}
if [ -z "$bench" ]; then
    cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_BUILD_TESTS=OFF >/dev/null
    cmake --build "$build" --target tarnwick_photo_bench >/dev/null
    bench="$build/bin/tarnwick_photo_bench"
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/heic"
i=0
while [ "$i" -lt "$count" ]; do
    for photo in $(find "$photos" -iname '*.jpg' | sort); do
        [ "$i" -lt "$count" ] || break
        name=$(printf 'IMG_%04d' "$i")
        vips thumbnail "$photo" "$scratch/$name.jpg[Q=98]" 4032 --height 3024 --size force
        heif-enc -q 90 -p preset=ultrafast "$scratch/$name".* -o "$scratch/heic/$name.HEIC" >/dev/null
        rm -f "$scratch/$name".*
        i=$((i + 1))
    done
done
echo "$count HEIC photos of 4032 x 3024 ($(du -sh "$scratch/heic" | cut -f1)); $threads at once; load average $(cut -d' ' -f1-3 /proc/loadavg)"

lw=$(( (4032 * 30 + 50) / 100 )); lh=$(( (3024 * 30 + 50) / 100 ))
sw=$(( (4032 * 15 + 50) / 100 )); sh=$(( (3024 * 15 + 50) / 100 ))
export lw lh sw sh
convert_then_jpeg() { # HEIC OUT
    name=$(basename "$1" .HEIC)
    heif-convert -q 100 "$1" "$2/00050_$name.jpg" >/dev/null &&
        vipsthumbnail "$2/00050_$name.jpg" --size "${lw}x${lh}!" -o "$2/Lrg_00050_$name.jpg[Q=100,subsample-mode=on]" &&
        vipsthumbnail "$2/Lrg_00050_$name.jpg" --size "${sw}x${sh}!" -o "$2/Sml_00050_$name.jpg[Q=100,subsample-mode=on]" &&
        rm "$2/00050_$name.jpg"
}
vips_heic() { # HEIC OUT
    name=$(basename "$1" .HEIC)
    vipsthumbnail "$1" --size "${lw}x${lh}!" -o "$2/Lrg_00050_$name.jpg[Q=100,subsample-mode=on]" &&
        vipsthumbnail "$2/Lrg_00050_$name.jpg" --size "${sw}x${sh}!" -o "$2/Sml_00050_$name.jpg[Q=100,subsample-mode=on]"
}
export -f convert_then_jpeg vips_heic
cpu() { echo "$1 + $2" | bc; }
best() { printf '%s\n' "$@" | sort -g | head -1; }
median() { printf '%s\n' "$@" | sort -g | sed -n "$(( ($# + 1) / 2 ))p"; }
declare -a tw tc cw cc vw vc
for ((run = 0; run < runs; ++run)); do
    rm -rf "$scratch/t" "$scratch/c" "$scratch/v"; mkdir -p "$scratch/t/work" "$scratch/t/out" "$scratch/c" "$scratch/v"
    /usr/bin/time -f "%e %U %S %M" -o "$scratch/t.time" \
        "$bench" --from "$scratch/heic" "$scratch/t/work" "$scratch/t/out" 15 30 "$threads" >/dev/null
    read -r e u s m < "$scratch/t.time"; tw+=("$e"); tc+=("$(cpu "$u" "$s")"); tm=$m
    /usr/bin/time -f "%e %U %S %M" -o "$scratch/c.time" bash -c \
        'ls "$0"/*.HEIC | VIPS_CONCURRENCY=1 xargs -P "$1" -I{} bash -c "convert_then_jpeg {} $2"' \
        "$scratch/heic" "$threads" "$scratch/c"
    read -r e u s m < "$scratch/c.time"; cw+=("$e"); cc+=("$(cpu "$u" "$s")")
    /usr/bin/time -f "%e %U %S %M" -o "$scratch/v.time" bash -c \
        'ls "$0"/*.HEIC | VIPS_CONCURRENCY=1 xargs -P "$1" -I{} bash -c "vips_heic {} $2"' \
        "$scratch/heic" "$threads" "$scratch/v"
    read -r e u s m < "$scratch/v.time"; vw+=("$e"); vc+=("$(cpu "$u" "$s")")
done
for side in t/out c v; do
    [ "$(ls "$scratch/$side" | wc -l)" -eq $((2 * count)) ] || { echo "$side: $(ls "$scratch/$side" | wc -l) copies, not $((2 * count))"; exit 1; }
done
for file in $(ls "$scratch/v"); do
    a=$(vipsheader -f width "$scratch/t/out/$file")x$(vipsheader -f height "$scratch/t/out/$file")
    b=$(vipsheader -f width "$scratch/v/$file")x$(vipsheader -f height "$scratch/v/$file")
    [ "$a" = "$b" ] || { echo "$file: $a against $b"; exit 1; }
done
echo "$count HEIC to $((2 * count)) copies, $runs runs each (best / median):"
echo "  tarnwick (to the list as JPEG, then sized): wall $(best "${tw[@]}") / $(median "${tw[@]}") s, CPU $(best "${tc[@]}") / $(median "${tc[@]}") s, peak $tm kB"
echo "  heif-convert + vipsthumbnail:               wall $(best "${cw[@]}") / $(median "${cw[@]}") s, CPU $(best "${cc[@]}") / $(median "${cc[@]}") s"
echo "  vipsthumbnail reading HEIC:                 wall $(best "${vw[@]}") / $(median "${vw[@]}") s, CPU $(best "${vc[@]}") / $(median "${vc[@]}") s"

# One 50-megapixel picture alone, as HEIC and as JPEG.
mkdir -p "$scratch/big/heic" "$scratch/big/jpeg"
vips thumbnail "$photos/abstract/Elephants_5640x3172.jpg" "$scratch/big/jpeg/00050_Big.jpg[Q=95]" 8192 --height 6144 --size force
heif-enc -q 90 -p preset=ultrafast "$scratch/big/jpeg/00050_Big.jpg" -o "$scratch/big/heic/Big.HEIC" >/dev/null
rm -rf "$scratch/big/w"; mkdir -p "$scratch/big/w"
/usr/bin/time -f "%e %U %S %M" -o "$scratch/bh.time" \
    "$bench" --from "$scratch/big/heic" "$scratch/big/w" "$scratch/big/out1" 15 30 1 >/dev/null
read -r e u s m < "$scratch/bh.time"
echo "one 8192 x 6144 HEIC onto the list and sized: $e s wall, $(cpu "$u" "$s") s CPU, peak $m kB (sizing budget 327680 kB)"
/usr/bin/time -f "%e %U %S %M" -o "$scratch/bj.time" \
    "$bench" "$scratch/big/jpeg" "$scratch/big/out2" 15 30 1 >/dev/null
read -r e u s m2 < "$scratch/bj.time"
echo "one 8192 x 6144 JPEG sized: $e s wall, $(cpu "$u" "$s") s CPU, peak $m2 kB (sizing budget 327680 kB)"
[ "$m" -lt 327680 ] && [ "$m2" -lt 327680 ]
