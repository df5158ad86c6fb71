"""A folder in which a test makes packages of the cross-compiled bundle, and made-up parts to put into them."""

import hashlib
import os
import plistlib
import shutil
import struct
import subprocess
import tempfile
from pathlib import Path

import damaged_bundle
from bundle_check import mach_o
from damaged_bundle import PROJECT

# A release that nobody will mistake for today's.
RELEASED_SECONDS = 1_700_000_000
PACKAGER = "scripts/package-macos"


class PackagingPlace:
    def __init__(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = Path(self.temporary.name)
        self.output = self.folder / "output"
        self.app = self.output / "Karno.app"
        self.archive = self.output / "Karno-1.0.0-macos.zip"
        self.symbols_archive = self.output / "Karno-1.0.0-macos-symbols.zip"
        self.built = damaged_bundle.BUNDLE

    def discard(self):
        self.temporary.cleanup()

    def package(self, *options, umask=0o022):
        """(exit status, what was printed, what was said beside)."""
        command = [PROJECT / PACKAGER, "--bundle", self.built, "--output", self.output, *options]
        environment = os.environ | {"SOURCE_DATE_EPOCH": str(RELEASED_SECONDS)}
        run = subprocess.run(command, capture_output=True, text=True, env=environment, umask=umask)
        return run.returncode, run.stdout, run.stderr

    def helpers(self):
        """The example client for both builds, with a link inside and a file that only its owner may read."""
        folder = self.folder / "helpers"
        shutil.copytree(damaged_bundle.BUNDLE / "Contents/Helpers", folder)
        resources = folder / "Karno.app/Contents/Resources"
        resources.mkdir(exist_ok=True)
        (resources / "settings").write_text("quiet\n")
        (resources / "settings").chmod(0o600)
        (resources / "defaults").symlink_to("settings")
        return folder

    def framework(self):
        """The shape of the updater's framework, with programs of ours, one of them marked as a library."""
        framework = self.folder / "Sparkle.framework"
        version = framework / "Versions/B"
        (version / "Resources").mkdir(parents=True)
        write_information(version / "Resources/Info.plist", "org.sparkle-project.Sparkle", "2.9.0")
        for bundle in ("Updater.app", "XPCServices/Downloader.xpc", "XPCServices/Installer.xpc"):
            name = Path(bundle).stem
            (version / bundle / "Contents/MacOS").mkdir(parents=True)
            write_information(version / bundle / "Contents/Info.plist", f"org.sparkle-project.{name}", "2.9.0", name)
            shutil.copy(damaged_bundle.BUNDLE / "Contents/MacOS/karnoctl", version / bundle / "Contents/MacOS" / name)
        shutil.copy(damaged_bundle.BUNDLE / "Contents/MacOS/karnoctl", version / "Autoupdate")
        shutil.copy(damaged_bundle.BUNDLE / "Contents/MacOS/karnoctl", version / "Sparkle")
        for processor in ("x86_64", "arm64"):
            set_kind(version / "Sparkle", processor, mach_o.MH_DYLIB)
        (framework / "Versions/Current").symlink_to("B")
        for name in ("Sparkle", "Resources", "Autoupdate", "Updater.app", "XPCServices"):
            (framework / name).symlink_to(f"Versions/Current/{name}")
        return framework

    def damage_built_icon(self):
        copy = self.folder / "damaged/Karno.app"
        shutil.copytree(self.built, copy)
        os.truncate(copy / "Contents/Resources/Karno.icns", 1000)
        self.built = copy

    def use_copy_of_built(self, *symbols):
        """A bundle of its own, with those of the cross build's files of symbols beside it."""
        copy = self.folder / "copy/Karno.app"
        shutil.copytree(self.built, copy)
        (copy.parent / "symbols").mkdir()
        for name, original in symbols:
            shutil.copy(damaged_bundle.SYMBOLS / original, copy.parent / "symbols" / name)
        self.built = copy

    def unpacked_archive(self):
        """The bundle as the unzip program makes it from the archive."""
        return self._unpacked(self.archive) / "Karno.app"

    def unpacked_symbols(self):
        return self._unpacked(self.symbols_archive) / "Karno-1.0.0-macos-symbols"

    def _unpacked(self, archive):
        folder = self.folder / "unpacked"
        subprocess.run(["unzip", "-q", archive, "-d", folder], check=True)
        return folder

    def project_with_stand_in_build(self, built, status):
        """A project whose cross build notes its arguments, has `built` as its result, and ends with the status."""
        project = self.folder / "project"
        (project / "scripts").mkdir(parents=True)
        shutil.copy(PROJECT / PACKAGER, project / "scripts")
        shutil.copytree(PROJECT / "tools/cross", project / "tools/cross", ignore=shutil.ignore_patterns("node_modules"))
        (project / "build/macos-universal").mkdir(parents=True)
        (project / "build/macos-universal/Karno.app").symlink_to(built)
        build = project / "scripts/cross-macos"
        build.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >"{project}/arguments"\nexit {status}\n')
        build.chmod(0o755)
        return project

    def package_in(self, project, *options):
        command = [project / PACKAGER, "--output", self.output, *options]
        environment = os.environ | {"SOURCE_DATE_EPOCH": str(RELEASED_SECONDS)}
        run = subprocess.run(command, capture_output=True, text=True, env=environment)
        return run.returncode, run.stdout, run.stderr


def write_information(path, identifier, version, executable=None):
    entries = {"CFBundleIdentifier": identifier, "CFBundleShortVersionString": version}
    path.write_bytes(plistlib.dumps(entries | ({"CFBundleExecutable": executable} if executable else {})))


def set_kind(program, processor, kind):
    """What each slice says that it is: a program, a library."""
    whole = bytearray(program.read_bytes())
    (part,) = [part for part in mach_o.read_slices(program) if part.processor == processor]
    struct.pack_into("<I", whole, whole.index(part.content) + 12, kind)
    program.write_bytes(whole)


def keep_only_slice(program, processor):
    (part,) = [part for part in mach_o.read_slices(program) if part.processor == processor]
    program.write_bytes(part.content)


def change_identifier(app, identifier):
    path = app / "Contents/Info.plist"
    path.write_bytes(plistlib.dumps(plistlib.loads(path.read_bytes()) | {"CFBundleIdentifier": identifier}))


def content_of(folder):
    """Path to kind, permissions, and hash or destination, of everything below: megabytes would drown a difference."""
    return {str(path.relative_to(folder)): facts_of(path) for path in folder.rglob("*")}


def facts_of(path):
    if path.is_symlink():
        return "link", os.readlink(path)
    mode = oct(path.stat().st_mode & 0o7777)
    return ("folder", mode) if path.is_dir() else ("file", mode, hash_of(path))


def hash_of(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()
