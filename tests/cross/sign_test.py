"""scripts/sign-macos runs the Mac's tools from the inside out. Here they are stand-ins that note their arguments."""

import unittest
from pathlib import Path

from signing_place import ENTITLEMENTS, HELPERS, IDENTITY, SPARKLE, SigningPlace  # makes what follows known
from packaging import archive


class Signing(SigningPlace):
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
