#!/usr/bin/env bash
# Configures and builds Tarnwick into build/ (Release unless BUILD_TYPE says otherwise).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$top" -B "$top/build" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" >/dev/null
cmake --build "$top/build" --parallel "$(nproc)"
