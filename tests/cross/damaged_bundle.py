"""A copy of the cross-compiled bundle that a test damages, and what the check says about it."""

import shutil
import struct
import subprocess
import sys
import tempfile
import uuid
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUNDLE = PROJECT / "build/macos-universal/Karno.app"
SYMBOLS = PROJECT / "build/macos-universal/symbols"

sys.path.insert(0, str(PROJECT / "tools/cross"))
from bundle_check import mach_o  # noqa: E402

LAUNCHER = "Contents/MacOS/Karno"
TOOL = "Contents/MacOS/karnoctl"


class DamagedBundle:
    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.app = Path(self.folder.name) / "Karno.app"
        shutil.copytree(BUNDLE, self.app)

    def discard(self):
        self.folder.cleanup()

    def check(self, *options):
        """(exit status, what was printed)."""
        command = [PROJECT / "scripts/check-macos-bundle", *options, self.app]
        run = subprocess.run(command, stdout=subprocess.PIPE, text=True)
        return run.returncode, run.stdout

    def remove(self, name):
        path = self.app / name
        path.rmdir() if path.is_dir() else path.unlink()

    def empty(self, name):
        shutil.rmtree(self.app / name)
        (self.app / name).mkdir()

    def write(self, name, text):
        (self.app / name).write_text(text)

    def replace_text(self, name, old, new):
        text = (self.app / name).read_text()
        assert old in text
        self.write(name, text.replace(old, new))

    def set_mode(self, name, mode):
        (self.app / name).chmod(mode)

    def set_size(self, name, size_bytes):
        with open(self.app / name, "r+b") as file:
            file.truncate(size_bytes)

    def flip_a_byte_of_the_icon(self, name, entry):
        """In the middle of an entry's picture."""
        content = bytearray((self.app / name).read_bytes())
        start = content.index(entry)
        (length,) = struct.unpack_from(">I", content, start + 4)
        content[start + length // 2] ^= 1
        (self.app / name).write_bytes(content)

    def rename_icon_entry(self, name, old, new):
        content = (self.app / name).read_bytes()
        (self.app / name).write_bytes(content.replace(old, new, 1))

    def keep_only_slice(self, name, processor):
        path = self.app / name
        subprocess.run([mach_o.llvm("llvm-lipo"), path, "-thin", processor, "-output", path], check=True)

    def use_unstripped(self, name, processor):
        path = self.app / name
        unstripped = self._thin(SYMBOLS / path.name, processor)
        self._replace_slice(path, processor, unstripped)

    def use_as_linked(self, name, processor):
        """With all that the linker exports, though stripped."""
        path = self.app / name
        stripped = Path(self.folder.name) / "stripped"
        linked = PROJECT / f"build/macos-{processor}/Karno.app" / name
        subprocess.run([mach_o.llvm("llvm-strip"), "-x", "-o", stripped, linked], check=True)
        self._replace_slice(path, processor, stripped)

    def replace_bytes(self, name, processor, old, new):
        """Everywhere in one slice; the length stays."""
        def replace(content):
            assert old in content and len(old) == len(new)
            return content.replace(old, new)

        self._edit_slice(name, processor, replace)

    def write_after_load_commands(self, name, processor, text):
        """Into the room that the linker leaves there, which nothing uses."""
        def write(content):
            start = 32 + struct.unpack_from("<I", content, 20)[0]
            end = start + len(text)
            assert not any(content[start:end])
            return content[:start] + text + content[end:]

        self._edit_slice(name, processor, write)

    def set_minimum_version(self, name, processor, packed):
        self._edit_command(name, processor, mach_o.LC_BUILD_VERSION, 12, struct.pack("<I", packed))

    def set_sdk_version(self, name, processor, packed):
        self._edit_command(name, processor, mach_o.LC_BUILD_VERSION, 16, struct.pack("<I", packed))

    def take_uuid(self, name, processor):
        """It becomes a command that nothing knows."""
        self._edit_command(name, processor, mach_o.LC_UUID, 0, struct.pack("<I", 0x7F))

    def share_uuid(self, name):
        """That of the first processor becomes the second one's."""
        first, second = self._slices(name)
        self._edit_command(name, second.processor, mach_o.LC_UUID, 8, uuid.UUID(first.uuid()).bytes)

    def flip_a_code_byte(self, name, processor):
        """In the middle of the program, which the signature covers."""
        def flip(content):
            middle = len(content) // 2
            return content[:middle] + bytes([content[middle] ^ 1]) + content[middle + 1 :]

        self._edit_slice(name, processor, flip)

    def _edit_command(self, name, processor, kind, offset, replacement):
        def write(content):
            (program,) = [part for part in self._slices(name) if part.processor == processor]
            (command,) = [body for found, body in program.load_commands() if found == kind]
            changed = command[:offset] + replacement + command[offset + len(replacement) :]
            return content.replace(command, changed, 1)

        self._edit_slice(name, processor, write)

    def _thin(self, program, processor):
        thin = Path(self.folder.name) / "thin"
        subprocess.run([mach_o.llvm("llvm-lipo"), program, "-thin", processor, "-output", thin], check=True)
        return thin

    def _replace_slice(self, path, processor, replacement):
        command = [mach_o.llvm("llvm-lipo"), path, "-replace", processor, replacement, "-output", path]
        subprocess.run(command, check=True)

    def _slices(self, name):
        return mach_o.read_slices(self.app / name)

    def _edit_slice(self, name, processor, edit):
        path = self.app / name
        whole = path.read_bytes()
        (program,) = [part for part in self._slices(name) if part.processor == processor]
        start = whole.index(program.content)
        changed = edit(program.content)
        path.write_bytes(whole[:start] + changed + whole[start + len(program.content) :])
