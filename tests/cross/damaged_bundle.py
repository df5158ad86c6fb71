"""A copy of the cross-compiled bundle that a test damages, and what the check says about it."""

import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUNDLE = PROJECT / "build/macos-universal/Karno.app"

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
        unstripped = PROJECT / f"build/macos-{processor}/Karno.app" / name
        command = [mach_o.llvm("llvm-lipo"), path, "-replace", processor, unstripped, "-output", path]
        subprocess.run(command, check=True)

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
        def write(content):
            (program,) = [part for part in self._slices(name) if part.processor == processor]
            (command,) = [body for kind, body in program.load_commands() if kind == mach_o.LC_BUILD_VERSION]
            changed = command[:12] + struct.pack("<I", packed) + command[16:]
            return content.replace(command, changed, 1)

        self._edit_slice(name, processor, write)

    def flip_a_code_byte(self, name, processor):
        """In the middle of the program, which the signature covers."""
        def flip(content):
            middle = len(content) // 2
            return content[:middle] + bytes([content[middle] ^ 1]) + content[middle + 1 :]

        self._edit_slice(name, processor, flip)

    def _slices(self, name):
        return mach_o.read_slices(self.app / name)

    def _edit_slice(self, name, processor, edit):
        path = self.app / name
        whole = path.read_bytes()
        (program,) = [part for part in self._slices(name) if part.processor == processor]
        start = whole.index(program.content)
        changed = edit(program.content)
        path.write_bytes(whole[:start] + changed + whole[start + len(program.content) :])
