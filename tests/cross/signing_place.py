"""A place in which scripts/sign-macos runs with stand-ins for the Mac's tools, which note their arguments."""

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
  -c) for last; do :; done
    case "$last" in /*) ;; *) last=$PWD/$last ;; esac
    cd "$(eval echo "\\${$(($# - 1))}")/.." && exec zip -q -r -y "$last" Karno.app ;;
  *) exec cp -R "$1" "$2" ;;
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
# They make what their last word names.
MAKING = FAILING + 'for last; do :; done; printf "%s" "$(basename "$0")" >"$last"\n'
SPARKLE = ("Frameworks/Sparkle.framework/Versions/B/XPCServices/Downloader.xpc/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/XPCServices/Installer.xpc/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/Updater.app/Info.plist",
           "Frameworks/Sparkle.framework/Versions/B/Autoupdate",
           "Frameworks/Sparkle.framework/Versions/B/Sparkle")
HELPERS = "Helpers/Karno.app/Contents/Info.plist", "Helpers/Karno(Fuse).app/Contents/Info.plist"
CODE = bytes.fromhex("cffaedfe0c000001")
CODE_FOR_TWO_PROCESSORS = bytes.fromhex("cafebabe00000002")
JAVA_CLASS = bytes.fromhex("cafebabe00000034")


class SigningPlace(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.log = self.folder / "log"
        self.release = self.folder / "Karno-1.1.zip"
        tools = {"codesign": FAILING, "xcrun": FAILING, "spctl": NOTED, "ditto": DITTO, "plutil": PLUTIL,
                 "pkgbuild": MAKING, "productbuild": MAKING, "pkgutil": FAILING, "hdiutil": MAKING}
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
