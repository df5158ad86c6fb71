"""The text stubs are the list of what is imported from macOS: a program that uses more does not link."""

import subprocess
import tempfile
import unittest
from pathlib import Path

from damaged_bundle import PROJECT
from bundle_check import mach_o, text_stubs

STUBS = PROJECT / "cmake/macos_stubs"


def link(source):
    """(whether it linked, what the compiler said)."""
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "main.cpp").write_text(source)
        command = [PROJECT / "build/macos-x86_64/cross-tools/c++", "main.cpp", "-o", "main", f"-F{STUBS}", f"-L{STUBS}",
                   "-framework", "AppKit", "-lobjc"]
        run = subprocess.run(command, cwd=folder, stderr=subprocess.PIPE, text=True)
    return run.returncode == 0, run.stderr


def referenced_symbols(processor):
    """What the launcher's libraries take from elsewhere."""
    libraries = sorted((PROJECT / f"build/macos-{processor}").rglob("*.a"))
    command = [mach_o.llvm("llvm-nm"), "--undefined-only", "--just-symbol-name", *libraries]
    return set(subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.split())


def declared_symbols(processor):
    return set().union(*(text_stubs.declared_symbols(stub, processor)[1] for stub in STUBS.rglob("*.tbd")))


class DeclaredImports(unittest.TestCase):
    def test_let_a_program_use_what_they_declare(self):
        linked, _ = link('extern "C" int NSApplicationMain(int, char**);\n'
                         "int main(int count, char** arguments) { return NSApplicationMain(count, arguments); }\n")

        self.assertTrue(linked)

    def test_stop_a_program_that_uses_more(self):
        linked, message = link('extern "C" void NSBeep();\nint main() { NSBeep(); }\n')

        self.assertFalse(linked)
        self.assertIn("undefined symbol: _NSBeep\n", message)

    def test_are_all_used_on_intel(self):
        self.assertEqual(set(), declared_symbols("x86_64") - referenced_symbols("x86_64"))

    def test_are_all_used_on_apple_silicon(self):
        self.assertEqual(set(), declared_symbols("arm64") - referenced_symbols("arm64"))


if __name__ == "__main__":
    unittest.main()
