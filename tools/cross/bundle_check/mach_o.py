"""Reads universal Mach-O programs: their slices, load commands and imports.

The numbers are those of <mach-o/fat.h> and <mach-o/loader.h>. Imports come from llvm-objdump, which decodes the
binding tables.
"""

import re
import shutil
import struct
import subprocess
import uuid
from dataclasses import dataclass
from pathlib import Path

FAT_MAGIC = 0xCAFEBABE
MAGIC_64 = 0xFEEDFACF
PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}

MH_EXECUTE = 2
MH_DYLIB = 6

LC_SYMTAB = 0x2
LC_DYSYMTAB = 0xB
LC_LOAD_DYLIB = 0xC
LC_SEGMENT_64 = 0x19
LC_UUID = 0x1B
LC_CODE_SIGNATURE = 0x1D
LC_DYLD_INFO_ONLY = 0x80000022
LC_VERSION_MIN_MACOSX = 0x24
LC_BUILD_VERSION = 0x32
# Weak, re-exported, lazily loaded and upward links load a library as well.
DYLIB_COMMANDS = {LC_LOAD_DYLIB, 0x80000018, 0x8000001F, 0x20, 0x80000023}

N_STAB = 0xE0
N_EXT = 0x01


class NotMachO(Exception):
    """The file is no program for a 64-bit Mac; the text says why."""


@dataclass(frozen=True)
class Import:
    symbol: str
    library: str  # as llvm-objdump names it: the last part of the path up to its first point


@dataclass(frozen=True)
class Slice:
    """One processor's program in a universal file."""

    path: Path
    processor: str
    content: bytes

    def load_commands(self):
        """Yields (command, its bytes)."""
        count = struct.unpack_from("<I", self.content, 16)[0]
        offset = 32
        for _ in range(count):
            command, size = struct.unpack_from("<II", self.content, offset)
            yield command, self.content[offset : offset + size]
            offset += size

    def kind(self):
        """MH_EXECUTE for what can be started, MH_DYLIB for a library."""
        return struct.unpack_from("<I", self.content, 12)[0]

    def minimum_version(self):
        """The lowest macOS as text, such as "10.14", or None when the program does not say."""
        versions = self._versions()
        return versions and version_text(versions[0])

    def sdk_version(self):
        """The macOS whose behaviour the program was built for, packed in one number; None when it does not say."""
        versions = self._versions()
        return versions and versions[1]

    def _versions(self):
        """(lowest macOS, that of the SDK), both packed, or None."""
        for command, body in self.load_commands():
            if command == LC_BUILD_VERSION:
                return struct.unpack_from("<II", body, 12)
            if command == LC_VERSION_MIN_MACOSX:
                return struct.unpack_from("<II", body, 8)
        return None

    def uuid(self):
        """What a crash report names the program by, or None."""
        for command, body in self.load_commands():
            if command == LC_UUID:
                return str(uuid.UUID(bytes=body[8:24])).upper()
        return None

    def libraries(self):
        """The install names of the libraries that are loaded with the program."""
        names = []
        for command, body in self.load_commands():
            if command in DYLIB_COMMANDS:
                start = struct.unpack_from("<I", body, 8)[0]
                names.append(body[start:].split(b"\0")[0].decode())
        return names

    def signature(self):
        """The bytes of the code signature, or None."""
        for command, body in self.load_commands():
            if command == LC_CODE_SIGNATURE:
                offset, size = struct.unpack_from("<II", body, 8)
                return self.content[offset : offset + size]
        return None

    def has_private_symbols(self):
        """Whether the program holds symbols that nothing outside can use: what stripping removes."""
        for command, body in self.load_commands():
            if command == LC_SYMTAB:
                offset, count = struct.unpack_from("<II", body, 8)
                types = (self.content[offset + 16 * index + 4] for index in range(count))
                return any(kind & N_STAB or not kind & N_EXT for kind in types)
        return False

    def imports(self):
        """What the loader looks up when the program starts or first calls it."""
        text = self._dump("--bind", "--lazy-bind")
        rows = re.findall(r"^__\w+ +\S+ +0x[0-9A-F]+ +(?:pointer +-?\d+ +)?(\S+) +(\S+)", text, re.MULTILINE)
        return sorted({Import(symbol, library) for library, symbol in rows}, key=lambda row: row.symbol)

    def weak_binds(self):
        """(address, symbol) of each place that the loader fills with the first definition that any library has."""
        rows = re.findall(r"^__\w+ +\S+ +(0x[0-9A-F]+) +pointer +-?\d+ +(\S+)", self._dump("--weak-bind"), re.MULTILINE)
        return [(int(address, 16), symbol) for address, symbol in rows]

    def bound_addresses(self):
        """The places that the loader fills with another library's symbol when the program starts."""
        return addresses_in(self._dump("--bind"))

    def rebased_addresses(self):
        """The places that hold an address in the program itself."""
        return addresses_in(self._dump("--rebase"))

    def exports(self):
        """The symbols that other libraries may use."""
        return re.findall(r"^0x[0-9A-F]+ +(\S+)", self._dump("--exports-trie"), re.MULTILINE)

    def number_at(self, address):
        """The 64 bits that the file has for that address of the running program, or None."""
        for command, body in self.load_commands():
            if command == LC_SEGMENT_64:
                start, _, offset, size = struct.unpack_from("<4Q", body, 24)
                if start <= address <= start + size - 8:
                    return struct.unpack_from("<Q", self.content, offset + address - start)[0]
        return None

    def _dump(self, *tables):
        command = [llvm("llvm-objdump"), "--macho", f"--arch={self.processor}", *tables, self.path]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def addresses_in(table):
    return {int(address, 16) for address in re.findall(r"^__\w+ +\S+ +(0x[0-9A-F]+)", table, re.MULTILINE)}


def version_text(packed):
    """A version is packed as sixteen bits, eight bits, eight bits."""
    major, minor, patch = packed >> 16, packed >> 8 & 0xFF, packed & 0xFF
    return f"{major}.{minor}.{patch}" if patch else f"{major}.{minor}"


def llvm(tool):
    """Debian adds the version to the names of some tools."""
    for name in (tool, f"{tool}-14"):
        if shutil.which(name):
            return name
    raise FileNotFoundError(f"{tool} is not installed")


def read_slices(path):
    """The slices of a universal program, or the one of a plain program."""
    content = path.read_bytes()
    if len(content) >= 8 and struct.unpack_from(">I", content)[0] == FAT_MAGIC:
        count = struct.unpack_from(">I", content, 4)[0]
        rows = [struct.unpack_from(">5I", content, 8 + 20 * index) for index in range(count)]
        return [slice_of(path, content[offset : offset + size]) for _, _, offset, size, _ in rows]
    return [slice_of(path, content)]


def slice_of(path, content):
    if len(content) < 32 or struct.unpack_from("<I", content)[0] != MAGIC_64:
        raise NotMachO("is not a Mac program")
    processor = struct.unpack_from("<I", content, 4)[0]
    if processor not in PROCESSORS:
        raise NotMachO(f"has a slice for an unknown processor ({processor:#x})")
    return Slice(path, PROCESSORS[processor], content)
