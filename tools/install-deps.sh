#!/usr/bin/env bash
# Installs the Debian packages that Tarnwick needs to build, run and test, if any is missing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
mapfile -t wanted < <(grep -v '^\s*#' "$here/packages.txt" | sed '/^\s*$/d')
missing=()
for p in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
        echo "These packages are missing: ${missing[*]}" >&2
        echo "Run this script as root (su -), or install sudo, to install them." >&2
        exit 1
    fi
    sudo="sudo"
fi
echo "Installing: ${missing[*]}"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
