#!/bin/sh
# Renews docs/photo-page.png (1280 pixels wide) and docs/photo-page-phone.png (390 wide): the
# default twelve-photo page that test_photo_page builds from the default templates, top to
# bottom, in headless Chromium; and docs/photo-page-viewer.png (1280 x 800) and
# docs/photo-page-viewer-phone.png (390 x 844): the page's view of the larger copy, opened by a
# click on the first photo.
# Usage: tools/page-screenshots.sh [build folder]   (default: build; test_photo_page must be
# built there: cmake --build BUILD --target test_photo_page)
# Needs chromium (apt-get install -y chromium). PHOTOS=<folder> puts the .jpg pictures of that
# folder on the page in place of the drawn scenes.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build}
[ -x "$build/bin/test_photo_page" ] || { echo "build $build/bin/test_photo_page first"; exit 1; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

TARNWICK_PHOTO_PAGE_OUT="$scratch/page" TARNWICK_PHOTO_PAGE_SOURCE="${PHOTOS:-}" \
    QT_QPA_PLATFORM=offscreen "$build/bin/test_photo_page" twelvePhotosMakeACompletePage >/dev/null

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
        "$scratch/page/Photos.htm" > "$scratch/page/measure.htm"
    height=$(chrome --window-size="$1,800" --dump-dom "file://$scratch/page/measure.htm" |
        sed -n 's/.*data-height="\([0-9]*\)".*/\1/p' | head -1)
    [ -n "$height" ] || { echo "could not measure the page at width $1"; exit 1; }
    chrome --window-size="$1,$height" --screenshot="$2" "file://$scratch/page/Photos.htm" >/dev/null
    echo "$2: $1 x $height"
}

# viewer WIDTH HEIGHT FILE: the view over the page, opened as a click on the first photo does.
viewer() {
    sed -e 's|</body>|<script>addEventListener("load", () => document.querySelector(".photo a").click())</script></body>|' \
        "$scratch/page/Photos.htm" > "$scratch/page/viewer.htm"
    chrome --window-size="$1,$2" --screenshot="$3" "file://$scratch/page/viewer.htm" >/dev/null
    echo "$3: $1 x $2, the view open"
}

shoot 1280 "$here/docs/photo-page.png"
shoot 390 "$here/docs/photo-page-phone.png"
viewer 1280 800 "$here/docs/photo-page-viewer.png"
viewer 390 844 "$here/docs/photo-page-viewer-phone.png"
