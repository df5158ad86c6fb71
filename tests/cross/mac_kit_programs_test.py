"""A test program of the kit for a Mac still links, and costs the build of the launcher nothing."""

import re
import subprocess
import unittest

from damaged_bundle import PROJECT
from bundle_check import mach_o, text_stubs

BUILD = PROJECT / "build/macos-arm64"
KIT = PROJECT / "tests/mac_kit"
STUBS = (PROJECT / "cmake/macos_stubs", BUILD / "tests/mac_kit/stubs")


def ninja(*words):
    return subprocess.run(["ninja", "-C", BUILD, *words], check=True, stdout=subprocess.PIPE, text=True).stdout


def left_out():
    """The names of cases that the Mac is not asked."""
    lines = [line for line in (KIT / "left_out").read_text().splitlines() if not line.startswith("#")]
    return [line.split()[1] for line in lines]


def cases():
    """Suite and name of every test, as GoogleTest says them."""
    found = set()
    for source in (PROJECT / "tests").rglob("*_test.cpp"):
        for suite, case in re.findall(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", source.read_text(), re.MULTILINE):
            found |= {f"{suite}.{case}", f"Native/{suite}.{case}", f"Fake/{suite}.{case}"}
    return found


class TestPrograms(unittest.TestCase):
    def test_link_for_apple_silicon(self):
        ninja("karno_mac_sample")

        program, = mach_o.read_slices(BUILD / "tests/mac_kit/karno_mac_sample")

        self.assertEqual(("arm64", "11.0"), (program.processor, program.minimum_version()))
        self.assertIsNotNone(program.signature())

    def test_import_only_what_a_stub_declares(self):
        ninja("karno_mac_sample")
        stubs = [stub for folder in STUBS for stub in folder.rglob("*.tbd")]
        declared = set().union(*(text_stubs.declared_symbols(stub, "arm64")[1] for stub in stubs))

        program, = mach_o.read_slices(BUILD / "tests/mac_kit/karno_mac_sample")
        of_objc = {each.symbol for each in program.imports() if each.library == "libobjc"}

        self.assertEqual(set(), of_objc - declared)
        self.assertIn("_method_getTypeEncoding", of_objc)

    def test_load_each_library_once(self):
        ninja("karno_mac_sample")

        program, = mach_o.read_slices(BUILD / "tests/mac_kit/karno_mac_sample")

        self.assertEqual(sorted(set(program.libraries())), sorted(program.libraries()))

    def test_are_no_part_of_the_launchers_build(self):
        inputs = ninja("-t", "inputs", "all")

        self.assertIn("src/Karno\n", inputs)
        self.assertNotIn("mac_kit", inputs)
        self.assertNotIn("googletest", inputs)


class CasesLeftOut(unittest.TestCase):
    def test_are_there(self):
        patterns = [name.replace(".", r"\.").replace("*", ".*") for name in left_out()]
        all_cases = cases()

        missing = [pattern for pattern in patterns if not any(re.fullmatch(pattern, case) for case in all_cases)]

        self.assertEqual([], missing)


if __name__ == "__main__":
    unittest.main()
