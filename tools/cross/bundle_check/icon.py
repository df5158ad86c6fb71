"""Judges the icon file: every size is there, whole, and as large as it says. Each finding is one sentence."""

import struct
import zlib

HEADER_BYTES = 8
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
# What it is drawn for, its type, its size in pixels.
PNG_PICTURES = (
    ("16 points at 2x", b"ic11", 32),
    ("32 points at 2x", b"ic12", 64),
    ("128 points", b"ic07", 128),
    ("128 points at 2x", b"ic13", 256),
    ("256 points", b"ic08", 256),
    ("256 points at 2x", b"ic14", 512),
    ("512 points", b"ic09", 512),
    ("512 points at 2x", b"ic10", 1024),
)
# The same with the types of the colours and of the mask.
PLAIN_PICTURES = (("16 points", b"is32", b"s8mk", 16), ("32 points", b"il32", b"l8mk", 32))


class Damaged(Exception):
    pass


def findings(path, name):
    try:
        pictures = entries(path.read_bytes())
    except Damaged as problem:
        yield f"{name} is no icon: {problem}."
        return
    for purpose, kind, size in PNG_PICTURES:
        if kind not in pictures:
            yield f"{name} has no picture for {purpose}."
        elif png_size(pictures[kind]) != (size, size):
            yield f"{name} has no picture of {size} pixels for {purpose}."
    for purpose, colours, mask, size in PLAIN_PICTURES:
        if colours not in pictures or mask not in pictures:
            yield f"{name} has no picture for {purpose}."
        elif (unpacked_length(pictures[colours]), len(pictures[mask])) != (3 * size * size, size * size):
            yield f"{name} has no picture of {size} pixels for {purpose}."


def entries(content):
    """Type to data of each entry."""
    if content[:4] != b"icns":
        raise Damaged("it does not begin as one")
    if content[4:HEADER_BYTES] != struct.pack(">I", len(content)):
        raise Damaged("its length is not the one that it says")
    found = {}
    offset = HEADER_BYTES
    while offset < len(content):
        kind = content[offset : offset + 4]
        length = int.from_bytes(content[offset + 4 : offset + HEADER_BYTES], "big")
        if length < HEADER_BYTES or offset + length > len(content):
            raise Damaged(f"its entry {kind.decode('ascii', 'replace')} does not fit")
        found[kind] = content[offset + HEADER_BYTES : offset + length]
        offset += length
    return found


def png_size(data):
    """(width, height) of a whole PNG picture, else None."""
    if data[:8] != PNG_SIGNATURE:
        return None
    size, kind, offset = None, None, 8
    while offset + 12 <= len(data):
        length, kind = struct.unpack_from(">I4s", data, offset)
        end = offset + 8 + length
        if data[end : end + 4] != struct.pack(">I", zlib.crc32(data[offset + 4 : end])):
            return None
        if kind == b"IHDR":
            size = struct.unpack_from(">II", data, offset + 8)
        offset = end + 4
    return size if kind == b"IEND" and offset == len(data) else None


def unpacked_length(coded):
    """A byte n < 128 is followed by n + 1 bytes, any other by one that stands n - 125 times. None: cut short."""
    length, offset = 0, 0
    while offset < len(coded):
        count = coded[offset]
        length += count + 1 if count < 128 else count - 125
        offset += count + 2 if count < 128 else 2
    return length if offset == len(coded) else None
