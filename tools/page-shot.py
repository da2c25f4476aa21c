#!/usr/bin/python3
"""A screenshot of a whole web page, however long, as headless Chromium shows it.

    tools/page-shot.py URL WIDTH OUTPUT.png

Chromium's --screenshot takes the window, not the page: the window is made far taller than any
page the program builds, and the picture is cut below the last row that differs from the
page's background (the colour of the bottom row), with a margin of 24 px left under it.
Needs chromium and python3-pil (bench and docs only, not the program).
"""
import os
import subprocess
import sys
import tempfile

from PIL import Image

TALL = 12000
MARGIN = 24


def main():
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    url, width, output = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    with tempfile.TemporaryDirectory() as scratch:
        shot = os.path.join(scratch, "tall.png")
        subprocess.run(
            ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--disable-sync", "--virtual-time-budget=5000", "--user-data-dir=" + os.path.join(scratch, "profile"),
             "--window-size=%d,%d" % (width, TALL), "--screenshot=" + shot, url],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        picture = Image.open(shot).convert("RGB")
        w, h = picture.size
        pixels = picture.load()
        background = [pixels[x, h - 1] for x in range(w)]
        bottom = h - 1
        while bottom > 0 and all(pixels[x, bottom] == background[x] for x in range(0, w, 2)):
            bottom -= 1
        if bottom >= h - 1:
            print("the page is taller than %d px; the picture is cut there" % TALL,
                  file=sys.stderr)
        picture.crop((0, 0, w, min(h, bottom + 1 + MARGIN))).save(output, optimize=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
