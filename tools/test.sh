#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite headless.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/install-deps.sh"
"$here/build.sh"
cd "$here/../build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)" --timeout 600
