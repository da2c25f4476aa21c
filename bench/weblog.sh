#!/usr/bin/env bash
# Web Log benchmark: the local build of a Web Log of 500 sections, 200 of them with pictures
# already sized (no upload), and the spelling check of a 10,000-word text with 100 misspelt
# words up to the moment its dialog would open; the same text through the hunspell command
# (the same library and dictionary) for comparison.
#
#   bench/weblog.sh [BUILD_DIR]      (default build-bench, a Release build)
#
# Needs (bench only, not for the program): apt-get install -y hunspell
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build-bench}
command -v hunspell >/dev/null || { echo "missing hunspell (apt-get install -y hunspell)"; exit 2; }

if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DTARNWICK_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target tarnwick_weblog_bench >/dev/null
bench="$build/bin/tarnwick_weblog_bench"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

echo "$(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
"$bench" build "$build/share/tarnwick" 500 200 5 2>/dev/null
"$bench" maketext "$scratch/words.txt" 10000 100 2>/dev/null
"$bench" spell "$scratch/words.txt" 2>/dev/null
start=$(date +%s.%N)
found=$(hunspell -d en_US -l < "$scratch/words.txt" | wc -l)
end=$(date +%s.%N)
echo "hunspell -d en_US -l: $found unknown words in $(echo "$end - $start" | bc) s (load and check)"
