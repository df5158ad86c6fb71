"""A build on a Mac is refused at its configuration where it could not work, and its preset is not."""

import json
import subprocess
import unittest

from damaged_bundle import PROJECT


def preset():
    presets = json.loads((PROJECT / "CMakePresets.json").read_text())["configurePresets"]
    (native,) = [row for row in presets if row["name"] == "macos-native"]
    return native["cacheVariables"]


def configure(**variables):
    """(exit status, what was said, in one line)."""
    settings = [f"-D{name}={value}" for name, value in variables.items()]
    command = ["cmake", *settings, "-P", PROJECT / "cmake/native_macos.cmake"]
    run = subprocess.run(command, capture_output=True, text=True)
    return run.returncode, " ".join(run.stderr.split())


class NativeBuild(unittest.TestCase):
    def test_takes_the_system_of_its_preset(self):
        target = preset()["CMAKE_OSX_DEPLOYMENT_TARGET"]

        self.assertEqual((0, ""), configure(CMAKE_OSX_DEPLOYMENT_TARGET=target, CMAKE_CXX_COMPILER_ID="AppleClang",
                                            CMAKE_CXX_COMPILER_VERSION="15.0.0"))

    def test_is_for_both_processors(self):
        self.assertEqual("x86_64;arm64", preset()["CMAKE_OSX_ARCHITECTURES"])

    def test_is_refused_for_an_older_system(self):
        status, said = configure(CMAKE_OSX_DEPLOYMENT_TARGET="10.14")

        self.assertEqual(1, status)
        self.assertIn("A build on a Mac needs macOS 10.15 or later as its CMAKE_OSX_DEPLOYMENT_TARGET", said)

    def test_is_refused_with_an_older_compiler(self):
        status, said = configure(CMAKE_CXX_COMPILER_ID="AppleClang", CMAKE_CXX_COMPILER_VERSION="13.1.6")

        self.assertEqual(1, status)
        self.assertIn("The Command Line Tools 14 or later are needed", said)


if __name__ == "__main__":
    unittest.main()
