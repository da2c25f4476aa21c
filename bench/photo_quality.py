#!/usr/bin/env python3
"""PSNR of sized copies against a Lanczos reference made from the full decode of the source.

    photo_quality.py SOURCE COPY [COPY ...]

For each COPY: decodes SOURCE at its whole size (EXIF orientation applied), scales it with
Pillow's Lanczos filter (three lobes, widened for reduction) straight to the copy's pixel size,
and prints "COPY WIDTHxHEIGHT PSNR" with the PSNR in dB over the red, green and blue channels.
The reference is made once per size. Exit status 2 when a copy can't be read.
"""
import math
import sys

import numpy
from PIL import Image, ImageOps


def psnr(a, b):
    diff = a.astype(numpy.float64) - b.astype(numpy.float64)
    mse = float(numpy.mean(diff * diff))
    return float("inf") if mse == 0 else 10 * math.log10(255.0 * 255.0 / mse)


def main(argv):
    if len(argv) < 3:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    source = ImageOps.exif_transpose(Image.open(argv[1])).convert("RGB")
    references = {}
    for path in argv[2:]:
        try:
            copy = Image.open(path).convert("RGB")
        except OSError as error:
            print(f"{path}: {error}", file=sys.stderr)
            return 2
        if copy.size not in references:
            references[copy.size] = numpy.asarray(source.resize(copy.size, Image.LANCZOS))
        value = psnr(numpy.asarray(copy), references[copy.size])
        print(f"{path} {copy.size[0]}x{copy.size[1]} {value:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
