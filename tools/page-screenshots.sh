#!/bin/sh
# Renews docs/photo-page.png (1280 pixels wide) and docs/photo-page-phone.png (390 wide): the
# default twelve-photo page that test_photo_page builds from the default templates, top to
# bottom, in headless Chromium; and docs/photo-page-viewer.png (1280 x 800) and
# docs/photo-page-viewer-phone.png (390 x 844): the page's view of the larger copy, opened by a
# click on the first photo.
# Usage: tools/page-screenshots.sh [build folder]   (default: build; test_photo_page must be
# built there: cmake --build BUILD --target test_photo_page)
# Needs chromium and python3-pil (apt-get install -y chromium python3-pil). PHOTOS=<folder> puts the .jpg pictures of that
# folder on the page in place of the drawn scenes.
set -eu
tools=$(cd "$(dirname "$0")" && pwd)
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
    /usr/bin/python3 "$tools/page-shot.py" "file://$scratch/page/Photos.htm" "$1" "$2"
    echo "$2: $(file -b "$2" | cut -d, -f2)"
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
