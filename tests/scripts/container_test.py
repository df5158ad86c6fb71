"""tools/container/Containerfile installs what scripts/bootstrap names, as far as that shows without a container."""

import json
import os
import re
import shlex
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
CONTAINERFILE = PROJECT / "tools/container/Containerfile"
BOOTSTRAP = PROJECT / "scripts/bootstrap"
NOTED = '#!/bin/sh\necho "$(basename "$0") $*" >>"$TOOL_LOG"\n'


def instructions():
    """(name, rest) of each."""
    lines = [line for line in CONTAINERFILE.read_text().splitlines() if line and not line.startswith("#")]
    return [tuple(line.split(" ", 1)) for line in lines]


def only(name):
    rest, = (rest for found, rest in instructions() if found == name)
    return rest


def documented(command):
    """The words of that command in README.md, without the comment."""
    line, = re.findall(rf"^{command} (.*?) *#.*$", (PROJECT / "README.md").read_text(), re.MULTILINE)
    return shlex.split(line)


class Container(unittest.TestCase):
    def test_has_the_system_that_the_script_is_for(self):
        self.assertEqual(["FROM", "COPY", "RUN", "ENV", "WORKDIR", "CMD"], [name for name, _ in instructions()])
        self.assertEqual("debian:12", only("FROM"))
        self.assertIn("on Debian 12", BOOTSTRAP.read_text())

    def test_installs_by_the_script(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            place = self.copied_into(folder)
            (folder / "var/lib/apt/lists").mkdir(parents=True)
            (folder / "var/lib/apt/lists/main").write_text("packages")
            for tool in ("dpkg-query", "apt-get", "git"):
                self.make_tool(folder / "bin" / tool, NOTED)
            self.make_tool(folder / "bin/sudo", '#!/bin/sh\nexec "$@"\n')
            command = only("RUN").replace("/opt/karno/", f"{place}/").replace("/var/lib/", f"{folder}/var/lib/")
            # So that nothing of this system is meant.
            self.assertNotRegex(command.replace(str(folder), ""), r"(^| )/(?!opt/karno/bootstrap|karno |var/lib/apt/lists/\*)")

            run = subprocess.run(["sh", "-c", command], capture_output=True, text=True, timeout=60, check=False,
                                 env=os.environ | {"PATH": f"{folder}/bin:{os.environ['PATH']}",
                                                   "TOOL_LOG": str(folder / "log")})

            calls = [line for line in (folder / "log").read_text().splitlines() if line.startswith("apt-get ")]
            self.assertEqual((0, ""), (run.returncode, run.stderr))
            self.assertEqual([True, True], [calls[0].endswith(" update"), " install --no-install-recommends " in calls[1]])
            self.assertLessEqual({"g++", "cmake", "libgnustep-gui-dev", "xvfb"}, set(calls[1].split()))
            self.assertIn(f"git config --system safe.directory {only('WORKDIR')}", (folder / "log").read_text())
            self.assertEqual([], list((folder / "var/lib/apt/lists").iterdir()))

    def copied_into(self, folder):
        """Where COPY puts the script, by the context that the document names."""
        source, target = only("COPY").split()
        context = PROJECT / documented("podman build")[-1]
        place = folder / Path(target).parent.relative_to("/")
        place.mkdir(parents=True)
        copy = folder / Path(target).relative_to("/")
        copy.write_bytes((context / source).read_bytes())
        copy.chmod((context / source).stat().st_mode)
        return place

    def make_tool(self, path, text):
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def test_has_no_list_of_packages_of_its_own(self):
        for name, rest in instructions():
            self.assertNotRegex(rest, r"\b(apt|apt-get|aptitude|dpkg|npm|pip3?)(\s|$)", name)

    def test_is_built_and_run_as_the_document_says(self):
        build, run = documented("podman build"), documented("podman run")

        self.assertEqual(CONTAINERFILE, PROJECT / build[build.index("--file") + 1])
        self.assertEqual(build[build.index("--tag") + 1], run[-1])
        self.assertEqual(only("WORKDIR"), run[run.index("--volume") + 1].split(":")[1])
        command, = json.loads(only("CMD"))
        self.assertTrue(os.access(PROJECT / command, os.X_OK))


if __name__ == "__main__":
    unittest.main()
