"""What the cross linker exports is hidden afterwards, and the program stays whole."""

import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

from damaged_bundle import PROJECT, TOOL
from bundle_check import mach_o

PROCESSORS = "x86_64", "arm64"
SCRIPT = PROJECT / "tools/cross/hide-symbols"


def linked(processor):
    return PROJECT / f"build/macos-{processor}/Karno.app" / TOOL


def read(path):
    (program,) = mach_o.read_slices(path)
    return program


def symbols(path):
    """(address, name) of all that the program has of its own."""
    command = [mach_o.llvm("llvm-nm"), "--defined-only", path]
    rows = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()
    return {(address, name) for address, _, name in map(str.split, rows)}


class Hiding(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = Path(folder.name) / "copy"

    def hide(self, program):
        """(exit status, what was said)."""
        run = subprocess.run([SCRIPT, program, self.copy], capture_output=True, text=True)
        return run.returncode, run.stderr

    def test_leaves_nothing_to_be_used_or_replaced_by_libraries(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                self.assertIn("__Znwm", read(linked(processor)).exports())

                self.assertEqual((0, ""), self.hide(linked(processor)))

                self.assertEqual(["__mh_execute_header"], read(self.copy).exports())
                self.assertEqual([], read(self.copy).weak_binds())

    def test_keeps_the_symbols_the_imports_and_the_uuid(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                self.hide(linked(processor))

                self.assertEqual(symbols(linked(processor)), symbols(self.copy))
                before, after = read(linked(processor)), read(self.copy)
                self.assertEqual((before.imports(), before.uuid()), (after.imports(), after.uuid()))

    def test_changes_no_code_and_no_data(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                before = read(linked(processor))
                (tables,) = [body for kind, body in before.load_commands()
                             if kind == mach_o.LC_SEGMENT_64 and body[8:].startswith(b"__LINKEDIT\0")]
                begin = 32 + struct.unpack_from("<I", before.content, 20)[0]
                end = struct.unpack_from("<Q", tables, 40)[0]

                self.hide(linked(processor))

                self.assertEqual(before.content[begin:end], read(self.copy).content[begin:end])

    def test_is_refused_where_only_a_weak_bind_fills_a_place(self):
        program = read(linked("arm64"))
        address = min(address for address, symbol in program.weak_binds() if symbol == "__Znwm")
        definition = struct.pack("<Q", program.number_at(address))
        damaged = self.copy.with_name("damaged")
        damaged.write_bytes(program.content.replace(definition, struct.pack("<Q", 0), 1))

        status, said = self.hide(damaged)

        self.assertEqual(1, status)
        self.assertEqual(
            f"hide-symbols: {damaged} has nothing but a weak bind to put __Znwm at {address:#x}.\n", said)

    def test_is_refused_for_what_is_no_program(self):
        other = self.copy.with_name("notes")
        other.write_text("not a program")

        self.assertEqual((1, f"hide-symbols: {other} is not a Mac program.\n"), self.hide(other))


if __name__ == "__main__":
    unittest.main()
