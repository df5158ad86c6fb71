"""scripts/sign-macos runs the Mac's tools from the inside out. Here they are stand-ins that note their arguments."""

import os
import plistlib
import subprocess
import tempfile
import unittest
from pathlib import Path

import damaged_bundle  # makes what follows known
from packaging import archive

SCRIPT = damaged_bundle.PROJECT / "scripts/sign-macos"
ENTITLEMENTS = damaged_bundle.PROJECT / "resources/macos/Karno.entitlements"
IDENTITY = "Developer ID Application: Vantul"
NOTED = '#!/bin/sh\nprintf "%s\\n" "$(basename "$0") $*" >>"$TOOL_LOG"\n'
# It packs and unpacks with what Linux has.
DITTO = NOTED + """case "$1" in
  -x) exec unzip -q "$3" -d "$4" ;;
  -c) for last; do :; done; cd "$(eval echo "\\${$(($# - 1))}")/.." && exec zip -q -r -y "$last" Karno.app ;;
esac
"""
# It takes one value from a property list.
PLUTIL = """#!/usr/bin/env python3
import plistlib, sys
_, extract, key, xml, output, standard_output, path = sys.argv
assert (extract, xml, output, standard_output) == ("-extract", "xml1", "-o", "-")
try:
    print(plistlib.dumps(plistlib.load(open(path, "rb"))[key]).decode())
except Exception as problem:
    sys.exit(f"{path}: {problem}")
"""
FAILING = NOTED + 'case "$*" in "$TOOL_FAILS"*) exit 65 ;; esac\n'
SPARKLE = ("Frameworks/Sparkle.framework/Versions/B/XPCServices/Downloader.xpc/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/XPCServices/Installer.xpc/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/Updater.app/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/Autoupdate",
           "Frameworks/Sparkle.framework/Versions/B/Sparkle")
HELPERS = "Helpers/Karno.app/Contents/Info.plist", "Helpers/Karno(Fuse).app/Contents/Info.plist"
CODE = bytes.fromhex("cffaedfe0c000001")
CODE_FOR_TWO_PROCESSORS = bytes.fromhex("cafebabe00000002")
JAVA_CLASS = bytes.fromhex("cafebabe00000034")


class Signing(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.log = self.folder / "log"
        self.release = self.folder / "Karno-1.1.zip"
        tools = {"codesign": FAILING, "xcrun": FAILING, "spctl": NOTED, "ditto": DITTO, "plutil": PLUTIL}
        for name, text in tools.items():
            self.make_tool(name, text)

    def make_tool(self, name, text):
        tool = self.folder / "bin" / name
        tool.parent.mkdir(exist_ok=True)
        tool.write_text(text)
        tool.chmod(0o755)

    def package(self, *more):
        """The archive that comes from Linux."""
        contents = self.folder / "made/Karno.app/Contents"
        for name in ("MacOS/Karno", "MacOS/karnoctl", *more):
            (contents / name).parent.mkdir(parents=True, exist_ok=True)
            (contents / name).write_text(name)
        if more and more[0] in SPARKLE:
            (contents / "Frameworks/Sparkle.framework/Versions/Current").symlink_to("B")
        return self.pack()

    def pack(self):
        packed = self.folder / "Karno-1.1-macos.zip"
        archive.pack(self.folder / "made/Karno.app", packed, 0)
        return packed

    def made(self, name):
        """A file of the package that is not there yet."""
        path = self.folder / "made/Karno.app/Contents" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def make_bundle(self, name, information="Contents/Info.plist", program=None):
        """With a program, unless that is empty."""
        executable = Path(name).stem if program is None else program
        entries = {"CFBundleExecutable": Path(executable).name} if executable else {}
        self.made(f"{name}/{information}").write_bytes(plistlib.dumps(entries))
        if executable:
            place = executable if "/" in executable else f"Contents/MacOS/{executable}"
            self.made(f"{name}/{place}").write_bytes(CODE)

    def client_with_code_inside(self):
        """Karno.app with code of every kind, and with what looks like it."""
        app = "Helpers/Karno.app"
        framework = f"{app}/Contents/Frameworks/Core.framework"
        self.make_bundle(app)
        self.make_bundle(framework, "Versions/A/Resources/Info.plist", "Versions/A/Core")
        self.make_bundle(f"{framework}/Versions/A/XPCServices/Worker.xpc")
        self.made(f"{framework}/Versions/Current").symlink_to("A")
        self.made(f"{framework}/Core").symlink_to("Versions/Current/Core")
        self.made(f"{framework}/Resources").symlink_to("Versions/Current/Resources")
        self.make_bundle(f"{app}/Contents/PlugIns/Files.appex")
        self.made(f"{app}/Contents/PlugIns/Files.appex/Contents/Frameworks/libfiles.dylib").write_bytes(CODE)
        self.make_bundle(f"{app}/Contents/Helpers/Agent.app")
        self.make_bundle(f"{app}/Contents/Resources/Pictures.bundle", program="")
        self.made(f"{app}/Contents/MacOS/karno-files").write_bytes(CODE_FOR_TWO_PROCESSORS)
        self.made(f"{app}/Contents/Resources/Main.class").write_bytes(JAVA_CLASS)
        self.made(f"{app}/Contents/Resources/notes").write_text("notes")

    def sign(self, *words, fails="nothing"):
        """(exit status, what was printed, what was said beside); the folder it worked in is WORK."""
        environment = os.environ | {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "TMPDIR": str(self.folder),
                                    "TOOL_LOG": str(self.log), "TOOL_FAILS": fails}
        run = subprocess.run([SCRIPT, *words], capture_output=True, text=True, env=environment)
        return run.returncode, run.stdout, run.stderr

    def noted(self):
        """What the tools were asked to do, without the place, which is another each time."""
        lines = self.log.read_text().splitlines() if self.log.exists() else []
        works = {word.split("/Karno.app")[0] for line in lines for word in line.split() if "/sign-macos." in word}
        work = min(works, key=len, default="WORK")
        return [line.replace(work, "WORK").replace(str(self.folder), "HERE") for line in lines]

    def test_begins_with_what_lies_inside(self):
        package = self.package(*SPARKLE, *HELPERS)

        status, _, said = self.sign("--identity", IDENTITY, "--keychain-profile", "karno", package, self.release)

        begin = f"codesign --force --options runtime --timestamp --sign {IDENTITY}"
        framework = "WORK/Karno.app/Contents/Frameworks/Sparkle.framework"
        self.assertEqual((0, ""), (status, said))
        self.assertEqual([
            "ditto -x -k HERE/Karno-1.1-macos.zip WORK",
            f"{begin} --preserve-metadata=entitlements {framework}/Versions/B/XPCServices/Downloader.xpc",
            f"{begin} --preserve-metadata=entitlements {framework}/Versions/B/XPCServices/Installer.xpc",
            f"{begin} {framework}/Versions/B/Autoupdate",
            f"{begin} {framework}/Versions/B/Updater.app",
            f"{begin} {framework}",
            "codesign --verify --deep --strict WORK/Karno.app/Contents/Helpers/Karno(Fuse).app",
            "codesign --verify --deep --strict WORK/Karno.app/Contents/Helpers/Karno.app",
            f"{begin} --identifier it.vantul.KarnoWrapper.karnoctl WORK/Karno.app/Contents/MacOS/karnoctl",
            f"{begin} --entitlements {ENTITLEMENTS} WORK/Karno.app",
            "codesign --verify --deep --strict --verbose=2 WORK/Karno.app",
            "ditto -c -k --keepParent WORK/Karno.app WORK/submitted.zip",
            "xcrun notarytool submit WORK/submitted.zip --keychain-profile karno --wait",
            "xcrun stapler staple WORK/Karno.app",
            "spctl --assess --type execute -vv WORK/Karno.app",
            "ditto -c -k --sequesterRsrc --keepParent WORK/Karno.app HERE/Karno-1.1.zip.unfinished",
        ], self.noted())
        self.assertTrue(self.release.is_file())

    def test_signs_the_helpers_when_asked_to(self):
        package = self.package(*HELPERS)

        self.sign("--identity", IDENTITY, "--sign-helpers", package, self.release)

        begin = f"codesign --force --options runtime --timestamp --sign {IDENTITY} --preserve-metadata=entitlements"
        self.assertEqual([f"{begin} WORK/Karno.app/Contents/Helpers/Karno(Fuse).app",
                          f"{begin} WORK/Karno.app/Contents/Helpers/Karno.app"],
                         [line for line in self.noted() if "/Helpers/" in line])

    def test_signs_all_code_inside_a_helper_before_what_it_lies_in(self):
        self.client_with_code_inside()

        self.sign("--identity", IDENTITY, "--sign-helpers", self.package(), self.release)

        top = "WORK/Karno.app/Contents/Helpers/"
        lines = [line for line in self.noted() if line.startswith("codesign --force") and top in line]
        signed = [line.split(top)[1] for line in lines]
        self.assertEqual([
            "Karno.app",
            "Karno.app/Contents/Frameworks/Core.framework",
            "Karno.app/Contents/Frameworks/Core.framework/Versions/A/XPCServices/Worker.xpc",
            "Karno.app/Contents/Helpers/Agent.app",
            "Karno.app/Contents/MacOS/karno-files",
            "Karno.app/Contents/PlugIns/Files.appex",
            "Karno.app/Contents/PlugIns/Files.appex/Contents/Frameworks/libfiles.dylib",
        ], sorted(signed))
        outer_first = [(outer, inner) for index, outer in enumerate(signed) for inner in signed[index:]
                       if inner.startswith(f"{outer}/")]
        self.assertEqual([], outer_first)
        loose = [line for line in lines if " --preserve-metadata=identifier,entitlements " in line]
        self.assertEqual(["karno-files", "libfiles.dylib"], sorted(Path(line).name for line in loose))

    def test_says_that_a_provisioning_profile_is_for_its_own_team(self):
        self.make_bundle("Helpers/Karno.app")
        self.made("Helpers/Karno.app/Contents/embedded.provisionprofile").write_text("profile")
        package = self.package()

        _, _, said = self.sign("--identity", IDENTITY, "--sign-helpers", package, self.release)
        _, _, said_without = self.sign("--identity", IDENTITY, package, self.release)

        sentence = ("sign-macos: Karno.app has a provisioning profile: with another team's signature macOS does not "
                    "start it\n")
        self.assertIn(sentence, said)
        self.assertNotIn(sentence, said_without)

    def test_refuses_a_framework_whose_links_were_followed(self):
        self.package(*SPARKLE)
        (self.folder / "made/Karno.app/Contents/Frameworks/Sparkle.framework/Versions/Current").unlink()
        package = self.pack()

        status, _, said = self.sign("--identity", IDENTITY, package, self.release)

        self.assertEqual(
            (1, "sign-macos: Sparkle.framework has no link Versions/Current: take it as its makers publish it, and "
                "copy it with ditto\n"), (status, said))
        self.assertEqual([], [line for line in self.noted() if line.startswith("codesign")])

    def test_refuses_a_framework_without_its_current_version(self):
        self.package(*SPARKLE)
        current = self.folder / "made/Karno.app/Contents/Frameworks/Sparkle.framework/Versions/Current"
        current.unlink()
        current.symlink_to("A")
        package = self.pack()

        status, _, said = self.sign("--identity", IDENTITY, package, self.release)

        self.assertEqual((1, "sign-macos: Sparkle.framework has no version that Versions/Current leads to\n"),
                         (status, said))

    def test_says_what_is_missing(self):
        status, _, said = self.sign("--identity", IDENTITY, self.package(), self.release)

        self.assertEqual(0, status)
        self.assertEqual(
            "sign-macos: there is no Sparkle.framework in the package: its updater will never start\n"
            "sign-macos: there is no client in the package: it will have nothing to start\n"
            "sign-macos: without --keychain-profile the bundle is not notarised: other Macs will refuse it\n", said)

    def test_releases_nothing_when_the_notary_refuses(self):
        self.release.write_text("the last one")

        status, _, _ = self.sign("--identity", IDENTITY, "--keychain-profile", "karno", self.package(*HELPERS),
                                 self.release, fails="stapler")

        self.assertEqual((65, "the last one"), (status, self.release.read_text()))
        self.assertEqual([], list(self.folder.glob("sign-macos.*")))

    def test_stops_at_a_helper_whose_signature_does_not_fit(self):
        status, _, _ = self.sign("--identity", IDENTITY, self.package(*HELPERS), self.release, fails="--verify")

        self.assertEqual(1 + 64, status)
        self.assertFalse(self.release.exists())

    def test_only_prints_when_it_is_dry(self):
        package = self.package(*SPARKLE, *HELPERS)

        status, printed, _ = self.sign("--identity", IDENTITY, "--dry-run", package, self.release)

        self.assertEqual((0, ["ditto -x -k HERE/Karno-1.1-macos.zip WORK"]), (status, self.noted()))
        self.assertIn("codesign --force --options runtime --timestamp --sign Developer\\ ID\\ Application:\\ Vantul ",
                      printed)
        self.assertEqual([*["codesign"] * 10, "ditto", "mv"], [line.split()[0] for line in printed.splitlines()])
        self.assertFalse(self.release.exists())

    def test_needs_an_identity(self):
        status, _, said = self.sign(self.package(), self.release)

        self.assertEqual((64, "sign-macos: --identity is missing; see scripts/sign-macos --help\n"), (status, said))

    def test_refuses_an_archive_of_something_else(self):
        other = self.folder / "made/Other.app"
        (other / "Contents").mkdir(parents=True)
        packed = self.folder / "other.zip"
        archive.pack(other, packed, 0)

        status, _, said = self.sign("--identity", IDENTITY, packed, self.release)

        self.assertEqual((1, f"sign-macos: {packed} holds no Karno.app\n"), (status, said))


if __name__ == "__main__":
    unittest.main()
