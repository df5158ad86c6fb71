"""scripts/check-macos-bundle finds each kind of damage, and says in one sentence what it is."""

import unittest

import side_by_side
from damaged_bundle import LAUNCHER, PROJECT, TOOL, DamagedBundle

INFO = "Contents/Info.plist"
ICON = "Contents/Resources/Karno.icns"
HELPER_INFO = "Contents/Helpers/Karno(Fuse).app/Contents/Info.plist"


class BundleCheck(unittest.TestCase):
    def setUp(self):
        self.bundle = DamagedBundle()
        self.addCleanup(self.bundle.discard)

    def assert_finding(self, sentence):
        self.assertEqual((1, sentence + "\n"), self.bundle.check())

    def test_passes_a_bundle_as_it_was_built(self):
        sentence = "Karno.app is complete: 4 programs for x86_64 and arm64.\n"
        self.assertEqual((0, sentence), self.bundle.check())

    def test_misses_a_file(self):
        self.bundle.remove("Contents/PkgInfo")

        self.assert_finding("Contents/PkgInfo is missing.")

    def test_misses_a_program(self):
        self.bundle.remove("Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)")

        self.assert_finding("Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse) is missing.")

    def test_misses_the_texts_of_a_language(self):
        self.bundle.remove("Contents/Resources/zh-Hant.lproj/Strings.json")

        self.assert_finding("Contents/Resources/zh-Hant.lproj/Strings.json is missing.")

    def test_misses_what_macos_asks_in_a_language(self):
        self.bundle.remove("Contents/Resources/nl.lproj/InfoPlist.strings")

        self.assert_finding("Contents/Resources/nl.lproj/InfoPlist.strings is missing.")

    def test_misses_the_icon(self):
        self.bundle.remove(ICON)

        self.assert_finding(f"{ICON} is missing.")

    def test_refuses_an_icon_that_is_cut_short(self):
        self.bundle.set_size(ICON, 20_000)

        self.assert_finding(f"{ICON} is no icon: its length is not the one that it says.")

    def test_refuses_an_icon_with_a_damaged_picture(self):
        self.bundle.flip_a_byte_of_the_icon(ICON, b"ic08")

        self.assert_finding(f"{ICON} has no picture of 256 pixels for 256 points.")

    def test_misses_a_size_of_the_icon(self):
        self.bundle.rename_icon_entry(ICON, b"is32", b"xxxx")

        self.assert_finding(f"{ICON} has no picture for 16 points.")

    def test_misses_a_language_in_the_info_plist(self):
        self.bundle.replace_text(INFO, "    <string>ko</string>\n", "")

        self.assert_finding(
            "Contents/Info.plist has ['en', 'de', 'es', 'fr', 'it', 'ja', 'nl', 'pt-BR', 'zh-Hans', 'zh-Hant'] for "
            "CFBundleLocalizations instead of ['en', 'de', 'es', 'fr', 'it', 'ja', 'ko', 'nl', 'pt-BR', 'zh-Hans', "
            "'zh-Hant'].")

    def test_misses_the_folder_for_frameworks(self):
        self.bundle.remove("Contents/Frameworks")

        self.assert_finding("Contents/Frameworks is missing.")

    def test_names_every_finding(self):
        self.bundle.remove("Contents/PkgInfo")
        self.bundle.set_mode(TOOL, 0o644)

        self.assert_finding("Contents/PkgInfo is missing.\nContents/MacOS/karnoctl is not executable.")

    def test_misses_a_slice(self):
        self.bundle.keep_only_slice(TOOL, "x86_64")

        self.assert_finding("Contents/MacOS/karnoctl has no arm64 slice.")

    def test_refuses_a_file_that_is_no_program(self):
        self.bundle.write(TOOL, "#!/bin/sh\nexit 0\n")

        self.assert_finding("Contents/MacOS/karnoctl is not a Mac program.")

    def test_refuses_a_slice_that_older_macs_do_not_start(self):
        self.bundle.set_minimum_version(LAUNCHER, "x86_64", 11 << 16)

        self.assert_finding("Contents/MacOS/Karno (x86_64) needs macOS 11.0 instead of 10.14.")

    def test_refuses_a_slice_for_an_sdk_with_other_alerts(self):
        self.bundle.set_sdk_version(TOOL, "x86_64", 10 << 16 | 14 << 8)

        self.assert_finding("Contents/MacOS/karnoctl (x86_64) was built for the SDK of macOS 10.14, before 11.0.")

    def test_refuses_a_slice_that_names_no_sdk(self):
        self.bundle.set_sdk_version(TOOL, "x86_64", 0)

        self.assert_finding("Contents/MacOS/karnoctl (x86_64) does not say which SDK it was built for.")

    def test_refuses_a_slice_without_a_uuid(self):
        self.bundle.take_uuid(TOOL, "x86_64")

        self.assert_finding("Contents/MacOS/karnoctl (x86_64) has no UUID.")

    def test_refuses_slices_with_the_same_uuid(self):
        self.bundle.share_uuid(TOOL)

        self.assertIn("Contents/MacOS/karnoctl has the same UUID for several processors.\n", self.bundle.check()[1])

    def test_refuses_a_program_that_shares_its_symbols_with_libraries(self):
        self.bundle.use_as_linked(LAUNCHER, "arm64")

        status, said = self.bundle.check()

        label = "Contents/MacOS/Karno (arm64)"
        self.assertEqual(1, status)
        self.assertIn(f"{label} exports __Znwm, which other libraries would then use.\n", said)
        self.assertIn(f"{label} binds __Znwm weakly, so another library's takes its place.\n", said)
        self.assertIn(f"{label} binds __ZTVNSt3__113basic_ostreamIcNS_11char_traitsIcEEEE weakly", said)
        self.assertEqual([], [line for line in said.splitlines() if " exports " not in line and " binds " not in line])

    def test_refuses_an_import_that_no_stub_declares(self):
        self.bundle.replace_bytes(LAUNCHER, "x86_64", b"_objc_getClass\0", b"_objc_getClasz\0")

        self.assert_finding(
            "Contents/MacOS/Karno (x86_64) imports _objc_getClasz from libobjc, which does not declare it.")

    def test_refuses_an_import_that_another_library_declares(self):
        self.bundle.replace_bytes(LAUNCHER, "x86_64", b"_objc_getClass\0", b"_pthread_equal\0")

        self.assert_finding(
            "Contents/MacOS/Karno (x86_64) imports _pthread_equal from libobjc, which does not declare it.")

    def test_refuses_a_library_that_should_not_be_linked(self):
        self.bundle.replace_bytes(LAUNCHER, "x86_64", b"/usr/lib/libobjc.A.dylib\0", b"/usr/lib/libc++.1.dylib\0\0")

        self.assert_finding(
            "Contents/MacOS/Karno (x86_64) links /usr/lib/libc++.1.dylib, which is not one of the libraries it may "
            "use.")

    def test_refuses_a_library_that_is_no_part_of_macos(self):
        self.bundle.replace_bytes(LAUNCHER, "x86_64", b"/usr/lib/libobjc.A.dylib\0", b"@rpath/libobjc.A.dylib\0\0\0")

        self.assert_finding("Contents/MacOS/Karno (x86_64) links @rpath/libobjc.A.dylib, which is no part of macOS.")

    def test_refuses_a_path_of_a_linux_home_folder(self):
        self.bundle.write_after_load_commands(LAUNCHER, "x86_64", b"/home/builder/main.cpp")

        self.assert_finding(
            "Contents/MacOS/Karno (x86_64) holds a path of the building machine: /home/builder/main.cpp")

    def test_refuses_a_path_of_the_project(self):
        path = f"{PROJECT}/src/main.cpp"
        self.bundle.write_after_load_commands(LAUNCHER, "x86_64", path.encode())

        self.assertIn(
            f"Contents/MacOS/Karno (x86_64) holds a path of the building machine: {path}\n", self.bundle.check()[1])

    def test_refuses_a_program_over_four_mebibytes(self):
        self.bundle.set_size(LAUNCHER, 5_000_000)

        self.assert_finding("Contents/MacOS/Karno has 5000000 bytes, more than 4194304.")

    def test_refuses_a_program_that_is_not_stripped(self):
        self.bundle.use_unstripped(LAUNCHER, "x86_64")

        self.assert_finding("Contents/MacOS/Karno (x86_64) is not stripped.")

    def test_refuses_a_program_that_was_changed_after_signing(self):
        self.bundle.flip_a_code_byte(LAUNCHER, "arm64")

        self.assert_finding(
            "Contents/MacOS/Karno (arm64) has no valid code signature, so Apple silicon does not start it.")

    def test_refuses_an_info_plist_that_does_not_parse(self):
        self.bundle.write(INFO, "{ CFBundleName")

        self.assert_finding("Contents/Info.plist is no property list: Invalid file.")

    def test_misses_a_key(self):
        self.bundle.replace_text(INFO, "<key>CFBundleVersion</key>", "<key>CFBundleVariant</key>")

        self.assert_finding("Contents/Info.plist has no CFBundleVersion.")

    def test_refuses_a_wrong_value(self):
        self.bundle.replace_text(HELPER_INFO, "it.vantul.KarnoFuse", "it.vantul.Karno")

        self.assert_finding(
            "Contents/Helpers/Karno(Fuse).app/Contents/Info.plist has 'it.vantul.Karno' for CFBundleIdentifier "
            "instead of 'it.vantul.KarnoFuse'.")

    def test_passes_a_package_without_helpers(self):
        self.bundle.empty("Contents/Helpers")

        sentence = "Karno.app is complete: 2 programs for x86_64 and arm64.\n"
        self.assertEqual((0, sentence), self.bundle.check("--package"))

    def test_refuses_a_package_with_one_of_two_helpers(self):
        self.bundle.empty("Contents/Helpers/Karno.app")
        self.bundle.remove("Contents/Helpers/Karno.app")

        self.assertEqual((1, "Karno.app is missing.\n"), self.bundle.check("--package"))

    def test_refuses_a_package_with_something_else_for_a_framework(self):
        self.bundle.write("Contents/Frameworks/README", "Sparkle goes here.\n")

        self.assertEqual((1, "Sparkle.framework is no framework: it has no Versions, or no Resources/Info.plist that "
                             "can be read.\n"), self.bundle.check("--package"))


if __name__ == "__main__":
    side_by_side.main()
