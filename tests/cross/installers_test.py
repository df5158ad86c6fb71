"""What scripts/sign-macos makes besides the archive: a package for Installer and a disk image, or neither."""

import os
import plistlib
import re
import unittest
import xml.etree.ElementTree

from signing_place import HELPERS, IDENTITY, SPARKLE, SigningPlace  # makes what follows known
from damaged_bundle import PROJECT

RESOURCES = PROJECT / "resources/macos/package"
INSTALLER_IDENTITY = "Developer ID Installer: Vantul"
PACKAGE_IDENTIFIER = "it.vantul.KarnoWrapper.package"


class Installers(SigningPlace):
    def setUp(self):
        super().setUp()
        self.pkg = self.folder / "Karno-1.1.pkg"
        self.dmg = self.folder / "Karno-1.1.dmg"
        self.begin = ["--identity", IDENTITY, "--keychain-profile", "karno"]
        self.for_pkg = ["--installer-identity", INSTALLER_IDENTITY, "--pkg", self.pkg]

    def versioned_package(self):
        self.made("Info.plist").write_bytes(plistlib.dumps({"CFBundleShortVersionString": "1.1"}))
        return self.package(*SPARKLE, *HELPERS)

    def noted_after_bundle(self):
        """What the tools were asked after the bundle itself had been looked at for the last time."""
        noted = self.noted()
        return noted[noted.index("spctl --assess --type execute -vv WORK/Karno.app") + 1:]

    def left_in_folder(self):
        return sorted(path.name for path in self.folder.iterdir() if path.name.startswith(("Karno", "sign-macos")))

    def test_are_a_signed_and_notarised_package(self):
        status, _, said = self.sign(*self.begin, *self.for_pkg, self.versioned_package(), self.release)

        self.assertEqual((0, ""), (status, said))
        self.assertEqual([
            "ditto WORK/Karno.app WORK/package/root/Karno.app",
            f"pkgbuild --root WORK/package/root --component-plist {RESOURCES}/components.plist "
            f"--scripts {RESOURCES}/scripts --identifier {PACKAGE_IDENTIFIER} --version 1.1 "
            "--install-location /Applications --ownership recommended WORK/package/Karno.pkg",
            f"productbuild --distribution {RESOURCES}/distribution.xml --package-path WORK/package "
            f"--sign {INSTALLER_IDENTITY} --timestamp WORK/Karno.pkg",
            "pkgutil --check-signature WORK/Karno.pkg",
            "xcrun notarytool submit WORK/Karno.pkg --keychain-profile karno --wait",
            "xcrun stapler staple WORK/Karno.pkg",
            "spctl --assess --type install -vv WORK/Karno.pkg",
            "ditto -c -k --sequesterRsrc --keepParent WORK/Karno.app HERE/Karno-1.1.zip.unfinished",
        ], self.noted_after_bundle())
        self.assertEqual("productbuild", self.pkg.read_text())
        self.assertEqual(["Karno-1.1-macos.zip", "Karno-1.1.pkg", "Karno-1.1.zip"], self.left_in_folder())

    def test_are_a_disk_image_with_a_link_to_applications(self):
        # What goes into the image is looked at while it is there.
        self.make_tool("hdiutil", '#!/bin/sh\nfor last; do :; done\nls -l "$5" >"$last"\n')

        status, _, said = self.sign(*self.begin, "--dmg", self.dmg, self.versioned_package(), self.release)

        self.assertEqual((0, ""), (status, said))
        self.assertEqual([
            "ditto WORK/Karno.app WORK/image/Karno.app",
            f"codesign --force --timestamp --sign {IDENTITY} WORK/Karno.dmg",
            "codesign --verify --strict WORK/Karno.dmg",
            "xcrun notarytool submit WORK/Karno.dmg --keychain-profile karno --wait",
            "xcrun stapler staple WORK/Karno.dmg",
            "spctl --assess --type open --context context:primary-signature -vv WORK/Karno.dmg",
            "ditto -c -k --sequesterRsrc --keepParent WORK/Karno.app HERE/Karno-1.1.zip.unfinished",
        ], self.noted_after_bundle())
        self.assertRegex(self.dmg.read_text(), r"Applications -> /Applications\n.* Karno\.app\n\Z")

    def test_are_made_without_the_notary_when_nobody_names_it(self):
        status, _, said = self.sign("--identity", IDENTITY, *self.for_pkg, "--dmg", self.dmg,
                                    self.versioned_package(), self.release)

        self.assertEqual(0, status)
        self.assertEqual(1, said.count("is not notarised"))
        self.assertEqual([], [line for line in self.noted() if line.startswith(("xcrun", "spctl"))])
        self.assertEqual(["Karno-1.1-macos.zip", "Karno-1.1.dmg", "Karno-1.1.pkg", "Karno-1.1.zip"],
                         self.left_in_folder())

    def test_appear_together_or_not_at_all(self):
        package = self.versioned_package()
        for refusal in ("notarytool submit", "stapler", "--check-signature", "create", "--distribution", "--root"):
            with self.subTest(refusal=refusal):
                # Only those that come after the bundle itself.
                self.make_tool("xcrun", f'#!/bin/sh\ncase "$*" in "{refusal}"*.pkg*) exit 65 ;; esac\n')

                status, _, _ = self.sign(*self.begin, *self.for_pkg, "--dmg", self.dmg, package, self.release,
                                         fails=refusal)

                self.assertEqual(65, status)
                self.assertEqual(["Karno-1.1-macos.zip"], self.left_in_folder())

    def test_are_only_told_of_when_it_is_dry(self):
        status, printed, _ = self.sign(*self.begin, *self.for_pkg, "--dmg", self.dmg, "--dry-run",
                                       self.versioned_package(), self.release)

        self.assertEqual((0, ["ditto -x -k HERE/Karno-1.1-macos.zip WORK"]), (status, self.noted()))
        self.assertEqual(
            ["mkdir", "ditto", "pkgbuild", "productbuild", "pkgutil", "xcrun", "xcrun", "spctl",
             "mkdir", "ditto", "ln", "hdiutil", "codesign", "codesign", "xcrun", "xcrun", "spctl",
             "ditto", "cp", "cp", "mv", "mv", "mv"],
            [line.split()[0] for line in printed.splitlines()][-23:])
        self.assertIn("hdiutil create -volname Karno -srcfolder ", printed)
        self.assertIn(" -fs HFS+ -format UDZO ", printed)
        self.assertEqual(["Karno-1.1-macos.zip"], self.left_in_folder())

    def test_need_a_version(self):
        status, _, said = self.sign(*self.begin, *self.for_pkg, self.package(), self.release)

        self.assertEqual((1, f"sign-macos: {self.folder}/Karno-1.1-macos.zip has no CFBundleShortVersionString, which "
                             "Installer knows it by\n"), (status, said))
        self.assertEqual([], [line for line in self.noted() if line.startswith("codesign")])

    def test_are_asked_for_in_one_way(self):
        package = self.versioned_package()
        for words, sentence in (
                (["--pkg", self.pkg], "--pkg needs --installer-identity"),
                (["--installer-identity", "X"], "--installer-identity signs nothing without --pkg"),
                (["--installer-identity", "X", "--pkg", "a.zip"], "--pkg takes a name that ends in .pkg"),
                (["--dmg", b"\xff"], "--dmg takes a name that ends in .dmg"),
                (["--dmg", "--dry-run"], "--dmg needs a name"),
                (["--pkg", ""], "--pkg needs a name")):
            with self.subTest(words=words):
                status, _, said = self.sign(*self.begin, *words, package, self.release)

                self.assertEqual((os.EX_USAGE, f"sign-macos: {sentence}; see scripts/sign-macos --help\n"),
                                 (status, said))
        self.assertEqual([], self.noted())


class Resources(unittest.TestCase):
    def test_put_the_bundle_where_the_package_says(self):
        component, = plistlib.loads((RESOURCES / "components.plist").read_bytes())

        self.assertEqual({"RootRelativeBundlePath": "Karno.app", "BundleIsRelocatable": False,
                          "BundleIsVersionChecked": True, "BundleHasStrictIdentifier": True,
                          "BundleOverwriteAction": "upgrade"}, component)

    def test_offer_the_package_to_every_mac_that_can_run_it(self):
        distribution = xml.etree.ElementTree.parse(RESOURCES / "distribution.xml").getroot()

        reference, = distribution.findall("pkg-ref")
        self.assertEqual((PACKAGE_IDENTIFIER, "Karno.pkg"), (reference.get("id"), reference.text))
        self.assertEqual(PACKAGE_IDENTIFIER, distribution.find("choice/pkg-ref").get("id"))
        self.assertEqual(distribution.find("choice").get("id"), distribution.find("choices-outline/line").get("choice"))
        self.assertEqual("x86_64,arm64", distribution.find("options").get("hostArchitectures"))
        self.assertEqual({"enable_anywhere": "false", "enable_currentUserHome": "false", "enable_localSystem": "true"},
                         distribution.find("domains").attrib)
        lowest = re.search(r"set\(KARNO_SYSTEM_MIN ([0-9.]+)\)", (PROJECT / "cmake/lowest_system.cmake").read_text())[1]
        self.assertEqual(lowest, distribution.find("volume-check/allowed-os-versions/os-version").get("min"))

    def test_have_no_script_that_opens_something(self):
        self.assertEqual(["preinstall"], os.listdir(RESOURCES / "scripts"))
        self.assertNotRegex((RESOURCES / "scripts/preinstall").read_text(), r"(^|[ /])open ")


if __name__ == "__main__":
    unittest.main()
