#!/usr/bin/env bash
# Screenshots of the Build a Portal tab and of a new user's portal page (the default links and
# three Categories of twelve links added through the tab, with a logo) as headless Chromium
# shows it at desktop (1280 px) and phone (390 px) width, the whole page, into docs/.
# Needs chromium and python3-pil.
#
#   tools/portal-screenshots.sh [BUILD_DIR]     (default build)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${1:-$source_dir/build}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
cmake --build "$build" --target test_portal_gui >/dev/null
TARNWICK_SCREENSHOT_DIR=$out QT_QPA_PLATFORM=offscreen "$build/bin/test_portal_gui" >/dev/null
cp "$out/portal-tab.png" "$source_dir/docs/portal-tab.png"
page="file://$out/portal-page/Portal.htm"
# The whole page at each width, however long it is.
/usr/bin/python3 "$here/page-shot.py" "$page" 1280 "$source_dir/docs/portal-1280.png"
/usr/bin/python3 "$here/page-shot.py" "$page" 390 "$source_dir/docs/portal-390.png"
ls -l "$source_dir"/docs/portal-*.png
