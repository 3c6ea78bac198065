#!/usr/bin/env python3
"""Draws the program's icon and writes it to MorvaneCrashReporter.ico beside this script.

A bolt on a parcel: something crashed, and it is on its way. The shapes are distance functions on the unit square,
so that each size is drawn by itself with smooth edges. Needs nothing beyond the standard library.
"""

import math
import struct
import zlib
from pathlib import Path

SIZES = (16, 20, 24, 32, 40, 48, 64, 128, 256)

TOP, BOTTOM = (0x35, 0x5C, 0x8C), (0x17, 0x2B, 0x4A)
CARTON, TAPE, BOLT = (0xF2, 0xEE, 0xE4), (0xC9, 0xBF, 0xA8), (0xF2, 0x7B, 0x1F)
BOLT_OUTLINE = ((0.58, 0.20), (0.34, 0.57), (0.48, 0.57), (0.42, 0.84), (0.68, 0.45), (0.53, 0.45))


def rounded_box(x, y, centre, half, radius):
    dx = abs(x - centre[0]) - half[0] + radius
    dy = abs(y - centre[1]) - half[1] + radius
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius


def polygon(x, y, points):
    nearest, inside = math.inf, False
    for (ax, ay), (bx, by) in zip(points, points[1:] + points[:1]):
        ex, ey, px, py = bx - ax, by - ay, x - ax, y - ay
        along = min(max((px * ex + py * ey) / (ex * ex + ey * ey), 0), 1)
        nearest = min(nearest, math.hypot(px - along * ex, py - along * ey))
        if (ay > y) != (by > y) and x < ax + (y - ay) / (by - ay) * ex:
            inside = not inside
    return -nearest if inside else nearest


def blend(under, colour, coverage):
    return tuple(u + (c - u) * coverage for u, c in zip(under, colour))


def pixel(x, y, step):
    def coverage(distance):
        return min(max(0.5 - distance / step, 0), 1)

    colour = blend(TOP, BOTTOM, y)
    colour = blend(colour, CARTON, coverage(rounded_box(x, y, (0.5, 0.52), (0.34, 0.32), 0.05)))
    colour = blend(colour, TAPE, coverage(rounded_box(x, y, (0.5, 0.52), (0.07, 0.32), 0)))
    bolt = polygon(x, y, BOLT_OUTLINE)
    colour = blend(colour, BOTTOM, coverage(bolt - 0.035))
    colour = blend(colour, BOLT, coverage(bolt))
    alpha = coverage(rounded_box(x, y, (0.5, 0.5), (0.5, 0.5), 0.16))
    return bytes(round(value) for value in (*colour, alpha * 255))


def png(size):
    step = 1 / size
    rows = b"".join(
        b"\0" + b"".join(pixel((i + 0.5) * step, (j + 0.5) * step, step) for i in range(size)) for j in range(size)
    )

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b"")


def bitmap(size):
    """The form that every resource reader takes for the small sizes: bottom-up BGRA with an empty mask."""
    step = 1 / size
    rows = b""
    for j in reversed(range(size)):
        for i in range(size):
            red, green, blue, alpha = pixel((i + 0.5) * step, (j + 0.5) * step, step)
            rows += bytes((blue, green, red, alpha))
    mask = bytes((size + 31) // 32 * 4 * size)
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, len(rows) + len(mask), 0, 0, 0, 0)
    return header + rows + mask


def main():
    images = [png(size) if size >= 128 else bitmap(size) for size in SIZES]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, image in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    Path(__file__).with_name("MorvaneCrashReporter.ico").write_bytes(directory + b"".join(images))


if __name__ == "__main__":
    main()
