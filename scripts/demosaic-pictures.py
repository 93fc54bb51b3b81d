#!/usr/bin/env python3
"""Makes the pictures and the quality table of docs/demosaic.md anew.

usage: demosaic-pictures.py [DEMOSAIC_QUALITY]

The argument is the program bench/convert/demosaic_quality of a build
(build/release by default).
"""

import re
import struct
import subprocess
import sys
import tempfile
import zlib
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
PROGRAM = PROJECT / "build/release/bench/convert/demosaic_quality"


def png_of_ppm(ppm):
    magic, size, depth, pixels = ppm.split(b"\n", 3)
    assert magic == b"P6" and depth == b"255"
    width, height = map(int, size.split())
    stride = 3 * width
    # Filter 2 (up): enlarged pictures repeat their rows.
    rows, above = bytearray(), bytes(stride)
    for y in range(height):
        row = pixels[y * stride : (y + 1) * stride]
        rows += b"\x02" + bytes((a - b) & 255 for a, b in zip(row, above))
        above = row

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))


def main():
    program = Path(sys.argv[1]) if len(sys.argv) > 1 else PROGRAM
    with tempfile.TemporaryDirectory() as directory:
        rows = subprocess.run([program, directory], check=True, capture_output=True, text=True).stdout
        for ppm in sorted(Path(directory).glob("*.ppm")):
            png = PROJECT / "docs/images" / (ppm.stem + ".png")
            png.parent.mkdir(parents=True, exist_ok=True)
            png.write_bytes(png_of_ppm(ppm.read_bytes()))
            print(f"{png}: {png.stat().st_size} bytes")
    page = PROJECT / "docs/demosaic.md"
    text = page.read_text()
    table = ("| code | chart, dB | its patches, dB | zone plate, dB | compared |\n"
             "|---|---|---|---|---|\n" + rows)
    text, count = re.subn(r"(<!-- quality -->\n).*?(<!-- end -->)",
                          lambda match: match[1] + table + match[2], text, flags=re.S)
    assert count == 1, "docs/demosaic.md has lost the marks around its table"
    page.write_text(text)
    print(rows, end="")


if __name__ == "__main__":
    main()
