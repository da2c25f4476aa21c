#!/usr/bin/env bash
# Paint window benchmark: every filter and effect on one 18-megapixel photo, by Tarnwick and by
# ImageMagick's nearest operation, side by side in one run.
#
#   bench/paint.sh [BUILD_DIR]
#   ONLY="blur rotate17" bench/paint.sh    (some operations only)
#   RUNS=5 bench/paint.sh                  (best of five instead of three)
#
# Both sides read the same PPM file and write a PPM file, in one process per operation, using
# every core (Tarnwick's thread pool, ImageMagick's OpenMP). Each is run three times and the best
# wall time kept. A run that only reads and writes ("none", and a plain "convert in out") is the
# baseline: the operation's own time is the total less the baseline, on both sides alike.
# Tarnwick also prints the time of the work alone, measured inside the program.
#
# Needs (bench only, not for the program): apt-get install -y imagemagick mate-backgrounds
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
photo=/usr/share/backgrounds/mate/abstract/Elephants_5640x3172.jpg
runs=${RUNS:-3}

for tool in convert identify; do
    command -v "$tool" >/dev/null || { echo "missing $tool (apt-get install -y imagemagick)"; exit 2; }
done
convert -version | grep -q ImageMagick || { echo "convert is not ImageMagick"; exit 2; }

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target tarnwick_paint_bench >/dev/null
bench="$build/bin/tarnwick_paint_bench"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
input="$scratch/photo.ppm"
if [ -f "$photo" ]; then
    # The package's largest photograph, 5640 x 3172, scaled to 18.25 megapixels.
    convert "$photo" -resize 5696x3204! "$input"
else
    # No camera photograph here: a plasma picture of 18 megapixels stands in.
    convert -size 5184x3456 plasma:fractal "$input"
fi
size=$(identify -format '%wx%h' "$input")
echo "picture: $size, $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
cat "$input" >/dev/null

now() { date +%s.%N; }
# best_of COMMAND...: the best wall time of $runs runs, in seconds.
best_of() {
    local best=999999 start end t
    for _ in $(seq "$runs"); do
        start=$(now)
        "$@" >"$scratch/last.out" 2>&1 || { cat "$scratch/last.out"; exit 1; }
        end=$(now)
        t=$(echo "$end - $start" | bc -l)
        if (($(echo "$t < $best" | bc -l))); then best=$t; fi
    done
    echo "$best"
}
work_ms() { sed -n 's/^work-ms //p' "$scratch/last.out"; }

base_t=$(best_of "$bench" "$input" "$scratch/t.ppm" none)
base_m=$(best_of convert "$input" "$scratch/m.ppm")
printf '%-12s %-40s %9s %9s %9s %9s %7s\n' operation "ImageMagick" "T total" "IM total" "T op" "IM op" "T work"
printf '%-12s %-40s %9.2f %9.2f %9s %9s %7s\n' baseline "(read and write)" "$base_t" "$base_m" - - -

while IFS='|' read -r name ours theirs; do
    [ -z "$name" ] && continue
    if [ -n "${ONLY:-}" ] && [[ " $ONLY " != *" $name "* ]]; then continue; fi
    t=$(best_of "$bench" "$input" "$scratch/t.ppm" "$ours")
    w=$(work_ms)
    # shellcheck disable=SC2086
    m=$(best_of convert "$input" $theirs "$scratch/m.ppm")
    printf '%-12s %-40s %9.2f %9.2f %9.2f %9.2f %7s\n' "$name" "$theirs" "$t" "$m" \
        "$(echo "$t - $base_t" | bc -l)" "$(echo "$m - $base_m" | bc -l)" "${w}ms"
done <<'OPERATIONS'
threshold|filter:0|-threshold 75%
blur|filter:1|-blur 0x1
brightness|filter:2|-evaluate add 12.5%
crease|filter:3|-wave 512x6.283
darkness|filter:4|-evaluate subtract 12.5%
diffuse|filter:5|-spread 2
emboss|filter:6|-emboss 0x1
graybw|filter:7|-colorspace Gray -threshold 50%
grayscale|filter:8|-colorspace Gray
replace|filter:10|-fill red -opaque white
sharpen|filter:11|-sharpen 0x1
snow|filter:12|-unsharp 0x1+24+0
wave|filter:13|-wave 4x6.283
flipH|flipH|-flop
flipV|flipV|-flip
stretch50|stretch:0.5|-resize 50%
stretch125|stretch:1.25|-resize 125%
rotate17|rotate:17|-rotate 17
rotate45|rotate:45|-rotate 45
polar17|polar:17|-rotate 17
invert|invert|-negate
OPERATIONS
