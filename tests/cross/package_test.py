"""scripts/package-macos makes a whole bundle and an archive of it, or says why not and leaves the last ones alone."""

import subprocess
import unittest
import zipfile

import packaging_place
import side_by_side
from bundle_check import mach_o
from packaging_place import PackagingPlace

NO_HELPERS = "package-macos: Contents/Helpers is empty, as there is no --helpers: this package has no client to start.\n"
NO_FRAMEWORK = ("package-macos: Contents/Frameworks is empty, as there is no --sparkle: the updater of this package never "
                "starts.\n")
NO_KEY = "package-macos: There is no --public-key: this package takes no update.\n"
NO_SYMBOLS = ("package-macos: There is no folder of symbols beside --bundle: crash reports of this package name no "
              "functions.\n")
FUNCTION = "karno::StartupManager::instance()"


def uuids_in(*programs):
    """A row for each slice, as the package lists them."""
    return {f"{part.uuid()} ({part.processor}) {path.name}" for path in programs for part in mach_o.read_slices(path)}


def slice_of(program, processor):
    (part,) = [part for part in mach_o.read_slices(program) if part.processor == processor]
    return part


def address_of(function, program, processor):
    command = [mach_o.llvm("llvm-nm"), "--demangle", f"--arch={processor}", program]
    rows = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()
    (address,) = [row.split()[0] for row in rows if row.endswith(f" t {function}")]
    return int(address, 16)


def code_at(address, program, processor):
    return slice_of(program, processor).number_at(address)


def function_at(address, program, processor):
    command = [mach_o.llvm("llvm-symbolizer"), f"--obj={program}", f"--default-arch={processor}", hex(address)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()[0]


class Package(unittest.TestCase):
    maxDiff = 2000

    def setUp(self):
        self.place = PackagingPlace()
        self.addCleanup(self.place.discard)

    def test_has_empty_folders_for_what_is_not_given_and_says_so(self):
        status, printed, said = self.place.package()

        product = self.place.app, self.place.archive, self.place.symbols_archive
        self.assertEqual((0, "".join(f"{part}\n" for part in product)), (status, printed))
        self.assertEqual(NO_HELPERS + NO_FRAMEWORK + NO_KEY, said)
        self.assertEqual([], list((self.place.app / "Contents/Helpers").iterdir()))
        self.assertEqual([], list((self.place.app / "Contents/Frameworks").iterdir()))

    def test_has_all_else_that_was_staged(self):
        self.place.package()

        staged = packaging_place.content_of(self.place.built / "Contents")
        wanted = {name for name in staged if not name.startswith("Helpers/")}
        packaged = packaging_place.content_of(self.place.app / "Contents")
        self.assertEqual(wanted, packaged.keys())
        self.assertEqual({name: staged[name] for name in wanted}, packaged)

    def test_takes_the_helpers_and_the_framework_as_they_are(self):
        helpers, framework = self.place.helpers(), self.place.framework()
        (helpers / "Karno.app/Contents/Resources/settings").chmod(0o644)

        status, _, said = self.place.package("--helpers", helpers, "--sparkle", framework)

        self.assertEqual((0, NO_KEY), (status, said))
        contents = self.place.app / "Contents"
        self.assertEqual(packaging_place.content_of(helpers), packaging_place.content_of(contents / "Helpers"))
        self.assertEqual(["Sparkle.framework"], [path.name for path in (contents / "Frameworks").iterdir()])
        self.assertEqual(packaging_place.content_of(framework),
                         packaging_place.content_of(contents / "Frameworks/Sparkle.framework"))

    def test_says_when_a_helper_is_for_one_processor(self):
        helpers = self.place.helpers()
        packaging_place.keep_only_slice(helpers / "Karno.app/Contents/MacOS/Karno", "x86_64")

        _, _, said = self.place.package("--helpers", helpers)

        self.assertEqual(f"package-macos: Karno.app has no program for arm64.\n{NO_FRAMEWORK}{NO_KEY}", said)

    def test_has_an_archive_with_the_same_content_links_and_permissions(self):
        self.place.package("--helpers", self.place.helpers(), "--sparkle", self.place.framework())

        unpacked = packaging_place.content_of(self.place.unpacked_archive())
        self.assertEqual(packaging_place.content_of(self.place.app), unpacked)
        self.assertIn(("link", "settings"), unpacked.values())

    def test_is_the_same_bytes_each_time(self):
        parts = "--helpers", self.place.helpers(), "--sparkle", self.place.framework()
        self.place.package(*parts)
        first = packaging_place.hash_of(self.place.archive), packaging_place.hash_of(self.place.symbols_archive)

        self.place.package(*parts, umask=0o077)

        second = packaging_place.hash_of(self.place.archive), packaging_place.hash_of(self.place.symbols_archive)
        self.assertEqual(first, second)

    def test_is_sorted_and_has_the_date_of_the_release(self):
        self.place.package()

        entries = zipfile.ZipFile(self.place.archive).infolist()
        self.assertEqual({(2023, 11, 14, 22, 13, 20)}, {entry.date_time for entry in entries})
        paths = [entry.filename.rstrip("/") for entry in entries]
        self.assertEqual(sorted(paths), paths)

    def test_leaves_nothing_else_in_its_folder(self):
        self.place.package()
        self.place.package()

        self.assertEqual({self.place.app, self.place.archive, self.place.symbols_archive},
                         set(self.place.output.iterdir()))

    def test_replaces_nothing_when_the_bundle_is_damaged(self):
        self.place.package()
        last = packaging_place.content_of(self.place.output)
        self.place.damage_built_icon()

        outcome = self.place.package()

        sentence = "package-macos: Contents/Resources/Karno.icns is no icon: its length is not the one that it says.\n"
        self.assertEqual((1, "", sentence), outcome)
        self.assertEqual(last, packaging_place.content_of(self.place.output))


class Symbols(unittest.TestCase):
    """The programs before they were stripped, which name the functions of a crash report."""

    maxDiff = 2000

    def setUp(self):
        self.place = PackagingPlace()
        self.addCleanup(self.place.discard)

    def test_have_the_uuid_of_each_program_and_processor(self):
        self.place.package()

        kept = self.place.unpacked_symbols()
        listed = set((kept / "UUIDs").read_text().splitlines())
        programs = self.place.app / "Contents/MacOS"
        self.assertEqual(4, len(listed))
        self.assertEqual(listed, uuids_in(programs / "Karno", programs / "karnoctl"))
        self.assertEqual(listed, uuids_in(kept / "Karno", kept / "karnoctl"))

    def test_name_what_lies_at_an_address_of_the_packaged_program(self):
        self.place.package()

        kept, packaged = self.place.unpacked_symbols() / "Karno", self.place.app / "Contents/MacOS/Karno"
        for processor in ("x86_64", "arm64"):
            with self.subTest(processor):
                address = address_of(FUNCTION, kept, processor) + 8
                self.assertEqual(code_at(address, kept, processor), code_at(address, packaged, processor))
                self.assertEqual(FUNCTION, function_at(address, kept, processor))
                self.assertNotEqual(FUNCTION, function_at(address, packaged, processor))

    def test_are_refused_when_they_are_those_of_another_build(self):
        self.place.use_copy_of_built(("Karno", "karnoctl"), ("karnoctl", "karnoctl"))

        status, printed, said = self.place.package()

        self.assertEqual((1, ""), (status, printed))
        self.assertRegex(said, r"^package-macos: The symbols of Karno \(x86_64\) have the UUID [0-9A-F-]{36} instead "
                               r"of [0-9A-F-]{36}: they are those of another build\.\n$")

    def test_are_refused_when_those_of_a_program_are_missing(self):
        self.place.use_copy_of_built(("Karno", "Karno"))

        outcome = self.place.package()

        missing = self.place.built.parent / "symbols/karnoctl"
        self.assertEqual((1, "", f"package-macos: {missing} is missing.\n"), outcome)

    def test_of_the_last_package_do_not_stay_beside_one_without(self):
        self.place.package()
        self.place.use_copy_of_built()
        (self.place.built.parent / "symbols").rmdir()

        status, printed, said = self.place.package()

        self.assertEqual((0, f"{self.place.app}\n{self.place.archive}\n"), (status, printed))
        self.assertEqual(NO_HELPERS + NO_FRAMEWORK + NO_KEY + NO_SYMBOLS, said)
        self.assertFalse(self.place.symbols_archive.exists())


class Build(unittest.TestCase):
    """What goes to the cross build, which here is one that only notes its arguments."""

    def setUp(self):
        self.place = PackagingPlace()
        self.addCleanup(self.place.discard)

    def test_gets_the_versions_the_feed_and_the_key(self):
        project = self.place.project_with_stand_in_build(self.place.built, status=1)
        key = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="

        outcome = self.place.package_in(project, "--version", "1.1", "--build", "7", "--feed-host", "updates.example.com",
                                        "--public-key", key)

        self.assertEqual((1, "", "package-macos: The cross build failed.\n"), outcome)
        self.assertEqual(
            "-DKARNO_VERSION=1.1\n-DKARNO_BUNDLE_VERSION=7\n-DKARNO_UPDATE_FEED_HOST=updates.example.com\n"
            f"-DKARNO_UPDATE_PUBLIC_KEY={key}\n", (project / "arguments").read_text())

    def test_is_refused_when_it_has_other_values(self):
        project = self.place.project_with_stand_in_build(self.place.built, status=0)

        outcome = self.place.package_in(project, "--build", "7")

        self.assertEqual((1, "", "package-macos: The build has '1' for CFBundleVersion instead of '7'.\n"), outcome)
        self.assertEqual([], list(self.place.output.iterdir()))

    def test_does_not_begin_when_the_helpers_are_refused(self):
        project = self.place.project_with_stand_in_build(self.place.built, status=0)

        status, _, _ = self.place.package_in(project, "--helpers", self.place.folder)

        self.assertEqual(1, status)
        self.assertFalse((project / "arguments").exists())


if __name__ == "__main__":
    side_by_side.main()
