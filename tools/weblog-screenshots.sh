#!/bin/sh
# Renews docs/weblog-page.png (1280 pixels wide) and docs/weblog-page-phone.png (390 wide): the
# sample Web Log that test_blogpages builds from the default templates (three sections, two with
# pictures, pointers and a comment), top to bottom, in headless Chromium.
# Usage: tools/weblog-screenshots.sh [build folder]   (default: build; test_blogpages must be
# built there: cmake --build BUILD --target test_blogpages)
# Needs chromium and python3-pil (apt-get install -y chromium python3-pil).
set -eu
tools=$(cd "$(dirname "$0")" && pwd)
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build}
[ -x "$build/bin/test_blogpages" ] || { echo "build $build/bin/test_blogpages first"; exit 1; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

TARNWICK_WEBLOG_PAGE_OUT="$scratch/page" QT_QPA_PLATFORM=offscreen \
    "$build/bin/test_blogpages" aSampleWebLogMakesACompletePage >/dev/null

# shoot WIDTH FILE: the whole page at that width.
shoot() {
    /usr/bin/python3 "$tools/page-shot.py" "file://$scratch/page/Web_Log.htm" "$1" "$2"
    echo "$2: $(file -b "$2" | cut -d, -f2)"
}

shoot 1280 "$here/docs/weblog-page.png"
shoot 390 "$here/docs/weblog-page-phone.png"
