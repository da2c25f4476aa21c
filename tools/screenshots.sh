#!/bin/sh
# Renews the screenshots in docs/ from the real windows on a virtual 1280x800 screen.
# Usage: tools/screenshots.sh [build folder]   (default: build)
set -e
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build}
cmake --build "$build" --target tarnwick_screenshots
xvfb-run -a -s "-screen 0 1280x800x24" "$build/bin/tarnwick_screenshots" "$here/docs"
