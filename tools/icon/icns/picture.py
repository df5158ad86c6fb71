"""Reads the pixels of a PNG picture with eight bits for each of red, green, blue and alpha."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
RED_GREEN_BLUE_ALPHA = 6
PIXEL_BYTES = 4


def chunks(png):
    """Yields (type, data)."""
    offset = len(SIGNATURE)
    while offset < len(png):
        length, kind = struct.unpack_from(">I4s", png, offset)
        yield kind, png[offset + 8 : offset + 8 + length]
        offset += length + 12


def pixels(png):
    """The bytes of all pixels, row by row from the top."""
    parts = list(chunks(png))
    width, height, depth, colours, _, _, interlaced = struct.unpack(">IIBBBBB", dict(parts)[b"IHDR"])
    if (depth, colours, interlaced) != (8, RED_GREEN_BLUE_ALPHA, 0):
        raise ValueError("the picture has another form of pixels")
    data = zlib.decompress(b"".join(data for kind, data in parts if kind == b"IDAT"))
    row_bytes = width * PIXEL_BYTES
    above = bytes(row_bytes)
    rows = []
    for start in range(0, height * (row_bytes + 1), row_bytes + 1):
        above = unfiltered(data[start], data[start + 1 : start + 1 + row_bytes], above)
        rows.append(above)
    return b"".join(rows)


def unfiltered(kind, row, above):
    """A row whose bytes were stored as differences from their neighbours."""
    found = bytearray(row)
    for index in range(len(found)):
        left = found[index - PIXEL_BYTES] if index >= PIXEL_BYTES else 0
        corner = above[index - PIXEL_BYTES] if index >= PIXEL_BYTES else 0
        up = above[index]
        guess = (0, left, up, (left + up) // 2, nearest(left, up, corner))[kind]
        found[index] = (found[index] + guess) & 0xFF
    return bytes(found)


def nearest(left, up, corner):
    """The neighbour that is nearest to left + up - corner, which PNG calls Paeth's predictor."""
    estimate = left + up - corner
    return min((left, up, corner), key=lambda value: abs(estimate - value))
