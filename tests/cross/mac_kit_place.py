"""A kit for a Mac, of stand-ins for its programs and for the Mac's tools, and what prove says of it."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
SOURCES = PROJECT / "tools/mac_kit"
STAND_INS = Path(__file__).parent / "mac_kit_stand_ins"
SEAL = "Contents/_CodeSignature/CodeResources is missing: the bundle as a whole is not signed."
PASSING = "#!/bin/sh\necho '[  PASSED  ] 7 tests.'\n"
TOOLS = {
    "sw_vers": "echo $KIT_VERSION",
    "uname": "echo $KIT_PROCESSOR",
    "sysctl": "exit 1",
    "xattr": "echo $KIT_ATTRIBUTE",
    "launchctl": "echo $KIT_SESSION",
    "id": '[ "$1" = -u ] && echo 501 || echo ann',
    "sudo": '[ -z "$KIT_ROOT" ] && exit 1; shift; exec "$@"',
    "top": 'for count in 4 9; do echo "PID IDLEW"; echo "$6 $count" | tr -d -; done',
    "footprint": "echo 3 MB",
    # The launcher itself may be ended by its identifier, so it must not be the shell's.
    "open": 'app=$2; shift 2; [ "$1" = --args ] && shift; "$app/Contents/MacOS/Karno" "$@" >/dev/null 2>&1 &',
    "osascript": '''case "$2" in
  *enabled*) echo $KIT_KEYS ;;
  *) echo "$2" | sed -n "s/.*key code //p" >"$KIT_STATE/pressed" && mv "$KIT_STATE/pressed" "$KIT_STATE/key" ;;
esac''',
    "defaults": '''file="$KIT_STATE/$2"
case "$1" in
  read) [ -f "$file" ] && cat "$file" ;;
  delete) rm "$file" ;;
  export) cp "$file" "$3" ;;
  import) cp "$3" "$file" ;;
esac''',
}


class KitPlace:
    def __init__(self):
        self.temporary = tempfile.TemporaryDirectory()
        folder = Path(self.temporary.name)
        self.kit, self.home, self.disk, self.state = (folder / name for name in ("kit", "home", "disk", "state"))
        for each in (self.home / "Downloads", self.home / "Library/Logs", self.disk / "Applications",
                     self.disk / "Library/Frameworks", self.state, folder / "bin", self.kit / "tests"):
            each.mkdir(parents=True)
        shutil.copytree(SOURCES, self.kit, dirs_exist_ok=True)
        shutil.copy(PROJECT / "tests/mac_kit/left_out", self.kit)
        shutil.copytree(STAND_INS, self.kit / "Karno.app/Contents/MacOS")
        for name in ("karno_unit_tests", "karno_native_tests"):
            self.make_program(self.kit / "tests" / name, PASSING)
        for name, text in TOOLS.items():
            self.make_program(folder / "bin" / name, f"#!/bin/bash\n{text}\n")
        self.settings = {
            "PATH": f"{folder}/bin:{os.environ['PATH']}", "HOME": str(self.home), "KARNO_KIT_DISK": str(self.disk),
            "KIT_STATE": str(self.state), "KIT_VERSION": "14.5", "KIT_PROCESSOR": "arm64", "KIT_SESSION": "Aqua",
            "KIT_KEYS": "true", "KIT_ROOT": "yes", "KIT_ATTRIBUTE": "", "KIT_SELF_CHECK": SEAL}

    def discard(self):
        self.temporary.cleanup()

    def make_program(self, path, text):
        path.write_text(text)
        path.chmod(0o755)

    def prove(self, *words, **settings):
        """(exit status, what was printed, what was said beside)."""
        command = [self.kit / "prove", "--wait", "20", "--calm", "0", *words]
        run = subprocess.run(command, capture_output=True, text=True, env=os.environ | self.settings | settings,
                             timeout=240)
        return run.returncode, run.stdout, run.stderr

    def results(self):
        folder, = self.kit.glob("karno-proof-*")
        return folder

    def everything(self):
        """What lies where the kit might leave something behind."""
        return sorted(path for place in (self.home, self.disk, self.state) for path in place.rglob("*"))
