"""Checks the signature that a linker gives a program, without which Apple silicon does not start it.

The layout is that of Apple's cs_blobs.h: a big-endian "super blob" whose slot 0 is the code directory, with one
hash per page of everything in front of the signature.
"""

import hashlib
import struct

SUPER_BLOB = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
SHA256 = 2


def is_valid(program):
    """Whether the signature is there and its page hashes are those of the program."""
    signature = program.signature()
    if signature is None:
        return False
    directory = code_directory(signature)
    return directory is not None and hashes_match(program.content, directory)


def code_directory(signature):
    magic, _, count = struct.unpack_from(">III", signature)
    if magic != SUPER_BLOB:
        return None
    for index in range(count):
        slot, offset = struct.unpack_from(">II", signature, 12 + 8 * index)
        if slot == 0 and struct.unpack_from(">I", signature, offset)[0] == CODE_DIRECTORY:
            return signature[offset:]
    return None


def hashes_match(content, directory):
    hashes_offset, = struct.unpack_from(">I", directory, 16)
    page_count, code_limit = struct.unpack_from(">II", directory, 28)
    hash_size, hash_type, _, page_shift = struct.unpack_from(">BBBB", directory, 36)
    page = 1 << page_shift
    if hash_type != SHA256 or page_count != -(-code_limit // page) or code_limit > len(content):
        return False
    for index in range(page_count):
        begin = index * page
        found = hashlib.sha256(content[begin : min(begin + page, code_limit)]).digest()
        start = hashes_offset + index * hash_size
        if found != directory[start : start + hash_size]:
            return False
    return True
