"""Writes the container: a header, then one entry for each size, each with a four-letter type and its length.

The two smallest sizes are stored as colours and a mask, since older systems show an application's icon wrongly when
those are PNG pictures. All others are PNG.
"""

import struct

from . import picture

# Type to size in pixels. The name says how large it is drawn, in points, and at which scale.
PNG_TYPES = {
    b"ic11": 32,  # 16 points at 2x
    b"ic12": 64,  # 32 points at 2x
    b"ic07": 128,
    b"ic13": 256,  # 128 points at 2x
    b"ic08": 256,
    b"ic14": 512,  # 256 points at 2x
    b"ic09": 512,
    b"ic10": 1024,  # 512 points at 2x
}
# Colours and mask.
PLAIN_TYPES = {(b"is32", b"s8mk"): 16, (b"il32", b"l8mk"): 32}

SIZES = sorted({*PNG_TYPES.values(), *PLAIN_TYPES.values()})

RUN_MIN = 3
RUN_MAX = 130
LITERALS_MAX = 128


def container(png_by_size):
    """The whole file from one PNG picture for each of SIZES."""
    entries = []
    for (colours, mask), size in PLAIN_TYPES.items():
        pixels = picture.pixels(png_by_size[size])
        channels = (pixels[channel :: picture.PIXEL_BYTES] for channel in range(3))
        entries.append((colours, b"".join(map(packed, channels))))
        entries.append((mask, pixels[3 :: picture.PIXEL_BYTES]))
    entries += [(kind, png_by_size[size]) for kind, size in PNG_TYPES.items()]
    body = b"".join(kind + struct.pack(">I", len(data) + 8) + data for kind, data in entries)
    return b"icns" + struct.pack(">I", len(body) + 8) + body


def packed(channel):
    """Run-length coded: n < 128 is followed by n + 1 bytes, any other n by one byte that stands n - 125 times."""
    coded = bytearray()
    literals = bytearray()

    def write_literals():
        while literals:
            part = literals[:LITERALS_MAX]
            del literals[:LITERALS_MAX]
            coded.append(len(part) - 1)
            coded.extend(part)

    index = 0
    while index < len(channel):
        run = run_length(channel, index)
        if run >= RUN_MIN:
            write_literals()
            coded.append(run + 125)
            coded.append(channel[index])
        else:
            literals.extend(channel[index : index + run])
        index += run
    write_literals()
    return bytes(coded)


def run_length(channel, start):
    end = start
    while end < len(channel) and end - start < RUN_MAX and channel[end] == channel[start]:
        end += 1
    return end - start
