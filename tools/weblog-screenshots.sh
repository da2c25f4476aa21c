#!/bin/sh
# Renews docs/weblog-page.png (1280 pixels wide) and docs/weblog-page-phone.png (390 wide): the
# sample Web Log that test_blogpages builds from the default templates (three sections, two with
# pictures, pointers and a comment), top to bottom, in headless Chromium.
# Usage: tools/weblog-screenshots.sh [build folder]   (default: build; test_blogpages must be
# built there: cmake --build BUILD --target test_blogpages)
# Needs chromium (apt-get install -y chromium).
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build}
[ -x "$build/bin/test_blogpages" ] || { echo "build $build/bin/test_blogpages first"; exit 1; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

TARNWICK_WEBLOG_PAGE_OUT="$scratch/page" QT_QPA_PLATFORM=offscreen \
    "$build/bin/test_blogpages" aSampleWebLogMakesACompletePage >/dev/null

chrome() {
    chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync \
        --hide-scrollbars --user-data-dir="$scratch/profile" --virtual-time-budget=5000 \
        "$@" 2>/dev/null
}

# shoot WIDTH FILE: the whole page at that width.
shoot() {
    # The page's height at this width: a copy of the page writes it into its own body once its
    # pictures are in. Chromium lays out --dump-dom at least 500 pixels wide, so the copy is held
    # to the width (the page's phone layout applies below 640 pixels either way).
    sed -e "s|</head>|<style>html { width: $1px; }</style></head>|" \
        -e 's|</body>|<script>addEventListener("load", () => document.body.setAttribute("data-height", document.documentElement.scrollHeight))</script></body>|' \
        "$scratch/page/Web_Log.htm" > "$scratch/page/measure.htm"
    height=$(chrome --window-size="$1,800" --dump-dom "file://$scratch/page/measure.htm" |
        sed -n 's/.*data-height="\([0-9]*\)".*/\1/p' | head -1)
    [ -n "$height" ] || { echo "could not measure the page at width $1"; exit 1; }
    chrome --window-size="$1,$height" --screenshot="$2" "file://$scratch/page/Web_Log.htm" >/dev/null
    echo "$2: $1 x $height"
}

shoot 1280 "$here/docs/weblog-page.png"
shoot 390 "$here/docs/weblog-page-phone.png"
