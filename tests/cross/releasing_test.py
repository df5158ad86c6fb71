"""What docs/releasing.md has for a Mac can be typed as it stands: with stand-ins for the Mac's tools, and for the build."""

import os
import plistlib
import re
import subprocess
import unittest

import signing_place
from damaged_bundle import PROJECT
from packaging_place import PackagingPlace
from signing_place import HELPERS, SPARKLE, SigningPlace

DOCUMENT = PROJECT / "docs/releasing.md"
# It refuses what the script itself would, and comes to its end where the build would begin.
PACKAGE_MACOS = """#!/bin/bash
told=$({project}/scripts/package-macos "$@" 2>&1)
[[ $told == *"package-macos: The cross build failed." ]] || {{ echo "$told" >&2; exit 1; }}
"""
SIGN_MACOS = '#!/bin/bash\nexec "{project}/scripts/sign-macos" "$@"\n'
KEY = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="


def blocks():
    """Title and commands of each block that is for a Mac."""
    found = re.findall(r"^ *```sh\n *# ([^\n]*)\n(.*?)^ *```$", DOCUMENT.read_text(), re.MULTILINE | re.DOTALL)
    return {title: commands for title, commands in found if title.startswith(("On a Mac", "For a Mac"))}


class BlocksForAMac(SigningPlace):
    def setUp(self):
        super().setUp()
        for name in ("atos", "llvm-symbolizer-14"):
            self.make_tool(name, signing_place.NOTED)
        (self.folder / "scripts").mkdir()
        self.make_tool("../scripts/sign-macos", SIGN_MACOS.format(project=PROJECT))
        self.made("Info.plist").write_bytes(plistlib.dumps({"CFBundleShortVersionString": "1.1"}))
        self.package(*SPARKLE, *HELPERS)
        (self.folder / "Karno.app").symlink_to("made/Karno.app")
        (self.folder / "resources").symlink_to(PROJECT / "resources")

    def use_packager(self):
        """The packager with a client, a framework and a build that says what it was asked for."""
        place = PackagingPlace()
        self.addCleanup(place.discard)
        project = place.project_with_stand_in_build(place.built, 1)
        self.make_tool("../scripts/package-macos", PACKAGE_MACOS.format(project=project))
        for name, part in (("client/macos", place.helpers()), ("frameworks/Sparkle.framework", place.framework())):
            (self.folder / name).parent.mkdir()
            (self.folder / name).symlink_to(part)
        return project / "arguments"

    def type(self, commands, **variables):
        environment = os.environ | variables | {
            "PATH": f"{self.folder}/bin:/usr/bin:/bin", "HOME": str(self.folder), "TMPDIR": str(self.folder),
            "TOOL_LOG": str(self.log), "TOOL_FAILS": "nothing", "SOURCE_DATE_EPOCH": "1700000000"}
        run = subprocess.run(["bash", "-e", "-c", commands], cwd=self.folder, env=environment, capture_output=True,
                             text=True, check=False)
        self.assertEqual((0, ""), (run.returncode, run.stderr), commands)

    def test_are_typed_by_these_tests_without_exception(self):
        self.assertEqual(["For a Mac, on Linux", "For a Mac, on Linux: about ten minutes", "On a Mac",
                          "On a Mac, by hand", "On a Mac, with the sources beside it"], sorted(blocks()))

    def test_package_the_release_with_its_values(self):
        asked_for = self.use_packager()

        self.type(blocks()["For a Mac, on Linux: about ten minutes"], VERSION="1.1", BUILD="2", PUBLIC_KEY=KEY,
                  FEED_HOST="updates.example.org")

        self.assertEqual(["-DKARNO_VERSION=1.1", "-DKARNO_BUNDLE_VERSION=2",
                          "-DKARNO_UPDATE_FEED_HOST=updates.example.org", f"-DKARNO_UPDATE_PUBLIC_KEY={KEY}"],
                         asked_for.read_text().splitlines())

    def test_sign_it_by_the_script_and_make_both_installers(self):
        self.type(blocks()["On a Mac, with the sources beside it"])

        self.assertEqual(["Karno-1.1-macos.zip", "Karno-1.1.dmg", "Karno-1.1.pkg", "Karno-1.1.zip"],
                         sorted(path.name for path in self.folder.glob("Karno-*")))

    def test_sign_by_hand_what_the_script_signs(self):
        self.type(blocks()["On a Mac, by hand"])
        by_hand = self.signed_code()
        self.log.unlink()
        self.type(blocks()["On a Mac, with the sources beside it"])

        self.assertIn("Karno.app/Contents/MacOS/karnoctl", by_hand)
        self.assertEqual(self.signed_code(), by_hand)

    def signed_code(self):
        """The bundle and what of it was signed, in that order."""
        signed = [line for line in self.noted() if line.startswith("codesign") and " --sign " in line]
        return [line[line.index("Karno.app"):] for line in signed if "Karno.app" in line]

    def test_name_functions_by_tools_of_both_systems(self):
        self.type(blocks()["On a Mac"])
        self.type(blocks()["For a Mac, on Linux"])

        self.assertEqual(["atos", "llvm-symbolizer-14"], [line.split()[0] for line in self.noted()])


if __name__ == "__main__":
    unittest.main()
