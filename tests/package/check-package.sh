#!/usr/bin/env bash
# Builds the Debian package from the build folder and checks what it installs: the program, its
# data folder, the desktop entry, the icons and the AppStream data, each valid, and the
# dependencies that the program and "Try it on this computer" need.
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

desktop-file-validate "$source/data/desktop/org.tarnwick.Tarnwick.desktop"
appstreamcli validate --no-net "$source/data/desktop/org.tarnwick.Tarnwick.metainfo.xml"

cd "$build"
cpack -G DEB -B "$work" >"$work/cpack.log" 2>&1 || { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$work"/tarnwick_*_*.deb)
dpkg-deb -c "$deb" | awk '{print $6}' | sed 's|^\./|/|' >"$work/files"

missing=0
for f in /usr/bin/tarnwick \
         /usr/share/applications/org.tarnwick.Tarnwick.desktop \
         /usr/share/metainfo/org.tarnwick.Tarnwick.metainfo.xml \
         /usr/share/icons/hicolor/scalable/apps/org.tarnwick.Tarnwick.svg \
         /usr/share/icons/hicolor/16x16/apps/org.tarnwick.Tarnwick.png \
         /usr/share/icons/hicolor/48x48/apps/org.tarnwick.Tarnwick.png \
         /usr/share/icons/hicolor/256x256/apps/org.tarnwick.Tarnwick.png \
         /usr/share/tarnwick/Top.txt \
         /usr/share/tarnwick/Tarnwicklib.cab \
         /usr/share/tarnwick/local-webspace.py \
         /usr/share/tarnwick/Cursors/pencil.cur \
         /usr/share/tarnwick/Cursors/handgrab.cur \
         /usr/share/tarnwick/help/1.html; do
    grep -qx "$f" "$work/files" || { echo "not in the package: $f"; missing=1; }
done
# Nothing outside /usr, nothing of the tests or the build tools.
if grep -v '^/usr' "$work/files" | grep -v '^/$' | grep -q .; then
    echo "outside /usr:"; grep -v '^/usr' "$work/files" | grep -v '^/$'; missing=1
fi
if grep -Eq 'test_|tarnwick_makecab|tarnwick_drawbullets|tarnwick_drawcursors|_bench' "$work/files"; then
    echo "build or test programs in the package:"; grep -E 'test_|makecab|drawbullets|drawcursors|_bench' "$work/files"; missing=1
fi

depends=$(dpkg-deb -f "$deb" Depends)
for d in libqt6widgets6 libcurl4 libgcab-1.0-0 libgif7 fonts-liberation python3-pyftpdlib; do
    [[ "$depends" == *"$d"* ]] || { echo "Depends lacks $d: $depends"; missing=1; }
done
# The desktop entry and the metainfo inside the package are the checked ones.
dpkg-deb -x "$deb" "$work/root"
desktop-file-validate "$work/root/usr/share/applications/org.tarnwick.Tarnwick.desktop"
exit $missing
