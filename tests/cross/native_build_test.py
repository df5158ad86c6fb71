"""A build on a Mac is refused at its configuration where it could not work, and its preset is not."""

import json
import plistlib
import subprocess
import tempfile
import unittest
from pathlib import Path

from damaged_bundle import PROJECT

APPLE = {"CMAKE_CXX_COMPILER_ID": "AppleClang", "CMAKE_CXX_COMPILER_VERSION": "15.0.0"}


def preset():
    presets = json.loads((PROJECT / "CMakePresets.json").read_text())["configurePresets"]
    (native,) = [row for row in presets if row["name"] == "macos-native"]
    return native["cacheVariables"]


def target_of_preset():
    return {"CMAKE_OSX_DEPLOYMENT_TARGET": preset()["CMAKE_OSX_DEPLOYMENT_TARGET"]}


def run_script(script, variables):
    """(exit status, what was said, in one line)."""
    settings = [f"-D{name}={value}" for name, value in variables.items()]
    run = subprocess.run(["cmake", *settings, "-P", script], capture_output=True, text=True)
    return run.returncode, " ".join(run.stderr.split())


def configure(variables):
    return run_script(PROJECT / "cmake/native_macos.cmake", variables)


class NativeBuild(unittest.TestCase):
    def assert_refused(self, beginning, variables):
        status, said = configure(variables)

        self.assertEqual(1, status)
        self.assertIn(beginning, said)

    def test_takes_the_system_of_its_preset(self):
        self.assertEqual((0, ""), configure(APPLE | target_of_preset()))

    def test_takes_a_newer_compiler_from_elsewhere(self):
        clang = {"CMAKE_CXX_COMPILER_ID": "Clang", "CMAKE_CXX_COMPILER_VERSION": "16.0.0"}

        self.assertEqual((0, ""), configure(clang | target_of_preset()))

    def test_is_for_both_processors(self):
        self.assertEqual("x86_64;arm64", preset()["CMAKE_OSX_ARCHITECTURES"])

    def test_is_refused_for_an_older_system(self):
        self.assert_refused("A build on a Mac needs macOS 10.15 or later as its CMAKE_OSX_DEPLOYMENT_TARGET",
                            APPLE | {"CMAKE_OSX_DEPLOYMENT_TARGET": "10.14"})

    def test_is_refused_without_a_lowest_system(self):
        self.assert_refused("A build on a Mac says in CMAKE_OSX_DEPLOYMENT_TARGET which macOS it needs", APPLE)

    def test_is_refused_with_older_tools_of_apple(self):
        self.assert_refused("AppleClang 14.0.3 is too old for the C++20 of these sources: the Command Line Tools 15 or "
                            "later are needed.",
                            APPLE | {"CMAKE_CXX_COMPILER_VERSION": "14.0.3"} | target_of_preset())

    def test_is_refused_with_an_older_clang(self):
        clang = {"CMAKE_CXX_COMPILER_ID": "Clang", "CMAKE_CXX_COMPILER_VERSION": "15.0.7"}

        self.assert_refused("Clang 15.0.7 is too old for the C++20 of these sources: clang 16 or later is needed",
                            clang | target_of_preset())

    def test_is_refused_with_a_compiler_without_blocks(self):
        gcc = {"CMAKE_CXX_COMPILER_ID": "GNU", "CMAKE_CXX_COMPILER_VERSION": "13.2.0"}

        self.assert_refused("GNU 13.2.0 cannot read the headers of macOS, which have blocks", gcc | target_of_preset())


class Information(unittest.TestCase):
    """What Info.plist says of the lowest system."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def information(self, name, **variables):
        script = self.folder / "script.cmake"
        native = f'include("{PROJECT}/cmake/native_macos.cmake")\n' if variables else ""
        script.write_text(f'{native}include("{PROJECT}/cmake/lowest_system.cmake")\n'
                          f'configure_file("{PROJECT}/resources/{name}.in" "{self.folder}/{name}" @ONLY)\n')
        self.assertEqual((0, ""), run_script(script, APPLE | variables))
        return plistlib.loads((self.folder / name).read_bytes())

    def test_has_the_system_of_a_build_on_a_mac(self):
        launcher = self.information("Info.plist", **target_of_preset())

        self.assertEqual("10.15", launcher["LSMinimumSystemVersion"])
        self.assertEqual({"arm64": "11.0", "x86_64": "10.15"}, launcher["LSMinimumSystemVersionByArchitecture"])

    def test_has_a_higher_system_for_both_processors(self):
        launcher = self.information("Info.plist", CMAKE_OSX_DEPLOYMENT_TARGET="13.0")

        self.assertEqual("13.0", launcher["LSMinimumSystemVersion"])
        self.assertEqual({"arm64": "13.0", "x86_64": "13.0"}, launcher["LSMinimumSystemVersionByArchitecture"])

    def test_has_it_for_the_example_client_as_well(self):
        helper = self.information("HelperInfo.plist", **target_of_preset())

        self.assertEqual("10.15", helper["LSMinimumSystemVersion"])

    def test_has_an_older_system_when_it_is_cross_compiled(self):
        launcher = self.information("Info.plist")

        self.assertEqual("10.14.6", launcher["LSMinimumSystemVersion"])
        self.assertEqual({"arm64": "11.0", "x86_64": "10.14.6"}, launcher["LSMinimumSystemVersionByArchitecture"])


if __name__ == "__main__":
    unittest.main()
