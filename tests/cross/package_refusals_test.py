"""scripts/package-macos refuses parts that are not what they should be, and says what is wrong with them."""

import shutil
import unittest

import packaging_place
import side_by_side
from packaging_place import PackagingPlace

USAGE_ERROR = 64


class Refusal(unittest.TestCase):
    def setUp(self):
        self.place = PackagingPlace()
        self.addCleanup(self.place.discard)

    def assert_refused(self, sentence, *options):
        self.assertEqual((1, "", f"package-macos: {sentence}\n"), self.place.package(*options))
        self.assertFalse(self.place.output.exists())

    def assert_misused(self, sentence, *options):
        status, _, said = self.place.package(*options)

        self.assertEqual(
            (USAGE_ERROR, f"scripts/package-macos: {sentence}; see scripts/package-macos --help\n"), (status, said))


class Helpers(Refusal):
    def setUp(self):
        super().setUp()
        self.helpers = self.place.helpers()
        self.fuse = self.helpers / "Karno(Fuse).app"

    def assert_finding(self, sentence):
        self.assert_refused(sentence, "--helpers", self.helpers)

    def test_are_refused_when_one_is_missing(self):
        shutil.rmtree(self.fuse)

        self.assert_finding("Karno(Fuse).app is missing.")

    def test_are_refused_when_one_is_no_bundle(self):
        (self.fuse / "Contents/Info.plist").unlink()

        self.assert_finding("Karno(Fuse).app is no bundle: it has no Contents/Info.plist that can be read.")

    def test_are_refused_when_they_have_each_others_identifier(self):
        packaging_place.change_identifier(self.fuse, "it.vantul.Karno")

        self.assert_finding("Karno(Fuse).app has the identifier 'it.vantul.Karno' instead of 'it.vantul.KarnoFuse'.")

    def test_are_refused_without_a_program(self):
        (self.fuse / "Contents/MacOS/Karno(Fuse)").chmod(0o644)

        self.assert_finding(
            "Karno(Fuse).app is no bundle: Contents/MacOS/Karno(Fuse) is not there, or not executable.")

    def test_are_refused_with_a_link_that_leads_out(self):
        (self.fuse / "Contents/notes").symlink_to("../../Karno.app/Contents/Info.plist")

        self.assert_finding("Karno(Fuse).app/Contents/notes is a link that leads out of it.")

    def test_are_refused_with_a_link_that_leads_nowhere(self):
        (self.fuse / "Contents/notes").symlink_to("gone")

        self.assert_finding("Karno(Fuse).app/Contents/notes is a link that leads nowhere.")


class Framework(Refusal):
    def setUp(self):
        super().setUp()
        self.framework = self.place.framework()

    def set_version(self, version):
        information = self.framework / "Resources/Info.plist"
        packaging_place.write_information(information, "org.sparkle-project.Sparkle", version)

    def assert_finding(self, sentence):
        self.assert_refused(sentence, "--sparkle", self.framework)

    def test_is_refused_under_another_name(self):
        self.framework = self.framework.rename(self.place.folder / "Glitter.framework")

        self.assert_finding("Glitter.framework is not called Sparkle.framework.")

    def test_is_refused_when_it_is_not_there(self):
        shutil.rmtree(self.framework)

        self.assert_finding(
            "Sparkle.framework is no framework: it has no Versions, or no Resources/Info.plist that can be read.")

    def test_is_refused_without_its_information(self):
        (self.framework / "Versions/B/Resources/Info.plist").unlink()

        self.assert_finding(
            "Sparkle.framework is no framework: it has no Versions, or no Resources/Info.plist that can be read.")

    def test_is_refused_when_it_is_another(self):
        packaging_place.write_information(self.framework / "Resources/Info.plist", "com.example.Glitter", "2.9.0")

        self.assert_finding(
            "Sparkle.framework has the identifier 'com.example.Glitter' instead of 'org.sparkle-project.Sparkle'.")

    def test_is_refused_when_its_links_were_followed(self):
        (self.framework / "Versions/Current").unlink()
        shutil.copytree(self.framework / "Versions/B", self.framework / "Versions/Current")

        self.assert_finding("Sparkle.framework has lost its links: Versions/Current is none.")

    def test_is_refused_when_it_is_too_old(self):
        self.set_version("2.8.1")

        self.assert_finding("Sparkle.framework has the version 2.8.1, which should be 2.9 or newer.")

    def test_is_refused_without_a_version(self):
        self.set_version("")

        self.assert_finding("Sparkle.framework has no version, which should be 2.9 or newer.")

    def test_is_taken_when_it_is_newer(self):
        for version in ("2.9", "2.10.0-beta.1", "3.0"):
            with self.subTest(version):
                self.set_version(version)

                self.assertEqual(0, self.place.package("--sparkle", self.framework)[0])

    def test_is_refused_with_a_program_for_its_library(self):
        packaging_place.set_kind(self.framework / "Versions/B/Sparkle", "arm64", 2)

        self.assert_finding("Sparkle.framework/Sparkle (arm64) is no dynamic library.")

    def test_is_refused_without_what_installs(self):
        (self.framework / "Autoupdate").unlink()
        (self.framework / "Versions/B/Autoupdate").unlink()

        self.assert_finding("Sparkle.framework/Autoupdate is missing.")

    def test_is_refused_when_what_installs_may_not_be_executed(self):
        (self.framework / "Versions/B/Autoupdate").chmod(0o644)

        self.assert_finding("Sparkle.framework/Autoupdate is not executable.")

    def test_is_refused_when_what_shows_progress_is_for_one_processor(self):
        packaging_place.keep_only_slice(self.framework / "Versions/B/Updater.app/Contents/MacOS/Updater", "arm64")

        self.assert_finding("Sparkle.framework/Updater.app/Contents/MacOS/Updater has no x86_64 slice.")

    def test_is_refused_without_a_service(self):
        shutil.rmtree(self.framework / "Versions/B/XPCServices/Installer.xpc")

        self.assert_finding(
            "Sparkle.framework/XPCServices/Installer.xpc is missing, or has no Contents/Info.plist that can be read.")

    def test_is_refused_without_its_library(self):
        (self.framework / "Versions/B/Sparkle").unlink()

        self.assertIn("package-macos: Sparkle.framework/Sparkle is missing.\n",
                      self.place.package("--sparkle", self.framework)[2])

    def test_is_refused_for_one_processor(self):
        packaging_place.keep_only_slice(self.framework / "Versions/B/Sparkle", "x86_64")

        self.assert_finding("Sparkle.framework/Sparkle has no arm64 slice.")

    def test_is_refused_with_a_library_that_is_none(self):
        (self.framework / "Versions/B/Sparkle").write_text("#!/bin/sh\n")

        self.assert_finding("Sparkle.framework/Sparkle is not a Mac program.")

    def test_is_refused_with_a_link_that_leads_out(self):
        (self.framework / "Versions/B/Headers").symlink_to("/usr/include")

        self.assert_finding("Sparkle.framework/Versions/B/Headers is a link that leads out of it.")


class CommandLine(Refusal):
    def test_takes_no_build_settings_for_a_bundle_that_is_built(self):
        self.assert_misused("--bundle is built already, so it cannot have --version, --feed-host",
                            "--version", "1.1", "--feed-host", "updates.example.com")

    def test_takes_only_versions_of_numbers(self):
        self.assert_misused("argument --build: '1.2b' is no version such as 1.2.3", "--build", "1.2b")

    def test_takes_only_a_host_without_its_path(self):
        self.assert_misused("argument --feed-host: 'https://a.example/b' is no host such as updates.example.com",
                            "--feed-host", "https://a.example/b")

    def test_takes_only_keys_of_the_right_length(self):
        self.assert_misused("argument --public-key: 'AAAA' is no public key of 32 bytes in base64", "--public-key", "AAAA")

    def test_refuses_a_bundle_that_is_none(self):
        self.place.built = self.place.folder

        self.assert_refused(f"{self.place.folder} is no bundle.")


if __name__ == "__main__":
    side_by_side.main()
