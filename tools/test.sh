#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite headless.
#
#   tools/test.sh                the suite, built as usual in build/
#   tools/test.sh --sanitize     the suite built with AddressSanitizer and UndefinedBehaviorSanitizer
#                                in build-asan/ (any finding fails its test)
#   tools/test.sh --fuzz [S]     every fuzz target for S seconds (60 by default) from its seeds
#   tools/test.sh --ci           all three, one after the other, as CI runs them
#
# Each part prints its own closing line; the script fails when any part fails.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
top="$here/.."
mode=normal
fuzz_seconds=60
case "${1:-}" in
    "") ;;
    --sanitize) mode=sanitize ;;
    --fuzz) mode=fuzz; fuzz_seconds=${2:-60} ;;
    --ci) mode=ci ;;
    -h|--help) sed -n '2,11p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "unknown option $1 (see --help)" >&2; exit 2 ;;
esac

"$here/install-deps.sh"

normal_suite() {
    "$here/build.sh"
    (cd "$top/build" &&
        QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)" --timeout 600)
}

sanitized_suite() {
    # -O1 keeps the build and the run short; the checks are those of any optimisation level.
    cmake -S "$top" -B "$top/build-asan" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG" -DTARNWICK_SANITIZE=ON >/dev/null
    cmake --build "$top/build-asan" --parallel "$(nproc)"
    (cd "$top/build-asan" &&
        QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)" --timeout 900)
}

fuzz_all() {
    # Two targets side by side on a machine of two cores; a hang is an input over 10 s here, as a
    # loaded machine may take longer than the 1 s of the long runs (tests/fuzz/README.md).
    "$here/fuzz" --time "$fuzz_seconds" --timeout 10 --jobs "$(nproc)" --nice 0 all
}

case "$mode" in
    normal) normal_suite ;;
    sanitize) sanitized_suite ;;
    fuzz) fuzz_all ;;
    ci)
        status=0
        start=$SECONDS
        normal_suite || status=1
        echo "test.sh: the suite took $((SECONDS - start)) s"
        start=$SECONDS
        sanitized_suite || status=1
        echo "test.sh: the sanitized suite took $((SECONDS - start)) s"
        start=$SECONDS
        fuzz_all || status=1
        echo "test.sh: the fuzz targets took $((SECONDS - start)) s"
        exit $status
        ;;
esac
