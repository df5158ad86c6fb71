"""docs/examples/remove-karno takes away what docs/administrators.md lists, and nothing beside it."""

import os
import plistlib
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
SCRIPT = PROJECT / "docs/examples/remove-karno"
DOCUMENT = PROJECT / "docs/administrators.md"
RECEIPT = "it.vantul.KarnoWrapper.package"
STAYED = "remove-karno: Karno still runs; nothing was taken away\n"

# What the list names, on the disk and in the home folder. The agent is loaded, the package installed.
ON_DISK = ("Applications/Karno.app/Contents/Info.plist", "Library/LaunchAgents/it.vantul.karno.login.plist",
           "usr/local/bin/karnoctl", "usr/local/share/man/man1/karnoctl.1",
           "usr/local/share/zsh/site-functions/_karnoctl", f"receipts/{RECEIPT}")
IN_HOME = ("Library/Logs/Karno for macOS/karno-wrapper.log", "Library/Logs/Karno for macOS/karno-wrapper.old.log",
           "Library/Caches/Karno/cache.noindex/.karnoUpdated", "Library/Caches/it.vantul.KarnoWrapper/downloads/part",
           "Library/HTTPStorages/it.vantul.KarnoWrapper/cookies", "KARNOUPGRADE.debug")
# What has a similar name or place, and is somebody else's.
OTHERS_ON_DISK = ("Applications/Karno.app.old/Contents/Info.plist", "Applications/Karno Tools.app/Contents/Info.plist",
                  "Library/LaunchAgents/it.vantul.karno.login.plist.backup", "usr/local/bin/karno",
                  "usr/local/share/man/man1/karno.1", "receipts/it.vantul.Karno")
OTHERS_IN_HOME = ("Library/Logs/Karno/client.log", "Library/Caches/Karno/cache.noindex/files",
                  "Library/Caches/it.vantul.Karno/files", "Library/HTTPStorages/it.vantul.Karno/cookies",
                  "KARNOUPGRADE", "Documents/Karno for macOS/notes")
SETTINGS = {
    "it.vantul.karno": {"isFirstStartup": False, "useFileProvider": True, "useFileProviderVerified": True,
                        "verboseLogging": True, "ofTheClient": "stays"},
    "it.vantul.KarnoWrapper": {"SUHasLaunchedBefore": True},
    "it.vantul.KarnoAdmin": {"USE_FILE_PROVIDER": "NO"},
    "it.vantul.KarnoOther": {"stays": True},
}

NOTED = '#!/bin/sh\necho "$(basename "$0") $*" >>"$KARNO_MACHINE_ROOT/log"\n'
TOOLS = {
    # Who runs something is told by a variable.
    "id": NOTED + 'case "$*" in "-u") echo "$USER_ID" ;; "-u anna") echo 501 ;; "-u o.b-1") echo 502 ;; *) exit 1 ;; esac',
    "stat": NOTED + 'echo "$AT_THE_SCREEN"',
    "sudo": '#!/bin/sh\ncase $1 in -u) HOME=$KARNO_MACHINE_ROOT/Users/$2 USER_ID=501; shift 3 ;; *) USER_ID=0 ;; esac\n'
            'export HOME USER_ID\nexec "$@"',
    "launchctl": NOTED + '[ "$1" != asuser ] || { shift 2; exec "$@"; }',
    "sleep": NOTED + '[ -z "${ENDS_MEANWHILE:-}" ] || kill "$ENDS_MEANWHILE"',
    "pkgutil": NOTED + 'r="$KARNO_MACHINE_ROOT/receipts/$2"\n'
                       'case $1 in --pkg-info) [ -e "$r" ] ;; --forget) rm "$r" ;; esac',
    "defaults": f"""#!{sys.executable}
import os, plistlib, sys
verb, domain, *keys = sys.argv[1:]
path = os.path.join(os.environ["HOME"], "Library/Preferences", domain + ".plist")
try:
    values = plistlib.load(open(path, "rb"))
    for key in keys:
        del values[key]
except (FileNotFoundError, KeyError):
    sys.exit(1)
if verb == "delete" and keys:
    plistlib.dump(values, open(path, "wb"))
elif verb == "delete":
    os.remove(path)
""",
}
KARNOCTL = NOTED + 'case $1 in quit) exit "$QUIT_STATUS" ;; status) exit "$STATUS_STATUS" ;; esac\n'


class Mac:
    """A folder like a Mac's disk, with all that the list names and more."""

    def __init__(self, folder, users=("anna",)):
        self.disk = Path(folder) / "disk"
        for name in ON_DISK + OTHERS_ON_DISK:
            self.make(self.disk / name, name)
        for user in users:
            home = self.home(user)
            for name in IN_HOME + OTHERS_IN_HOME:
                self.make(home / name, name)
            for domain, values in SETTINGS.items():
                self.make(home / f"Library/Preferences/{domain}.plist", "")
                (home / f"Library/Preferences/{domain}.plist").write_bytes(plistlib.dumps(values))
        for name, text in TOOLS.items():
            self.make_program(self.disk / "usr/bin" / name, text)
        self.make_program(self.karnoctl(), KARNOCTL)

    def home(self, user="anna"):
        return self.disk / "Users" / user

    def karnoctl(self):
        return self.disk / "Applications/Karno.app/Contents/MacOS/karnoctl"

    @staticmethod
    def make(path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def make_program(self, path, text):
        self.make(path, text + "\n")
        path.chmod(0o755)

    def environment(self, **variables):
        return {"KARNO_MACHINE_ROOT": str(self.disk), "HOME": str(self.home()), "USER_ID": "0",
                "AT_THE_SCREEN": "anna", "QUIT_STATUS": "0", "STATUS_STATUS": "3",
                "PATH": f"{self.disk}/usr/bin:{os.environ['PATH']}"} | variables

    def run(self, *words, shell=("bash", "--posix"), **variables):
        """(exit status, what was printed, what was said), by the shell that a Mac has for sh."""
        run = subprocess.run([*shell, SCRIPT, *words], capture_output=True, text=True, timeout=60, check=False,
                             env=self.environment(**variables))
        return run.returncode, run.stdout.replace(str(self.disk), ""), run.stderr.replace(str(self.disk), "")

    def files(self):
        """What lies there, with the settings' values; tools and their notes aside."""
        found = {}
        for path in sorted(self.disk.rglob("*")):
            name = str(path.relative_to(self.disk))
            if name == "log" or name.startswith("usr/bin/"):
                continue
            is_settings = path.is_file() and "/Preferences/" in name
            found[name] = plistlib.loads(path.read_bytes()) if is_settings else stat.S_IFMT(path.lstat().st_mode)
        return found

    def calls(self, tool):
        log = self.disk / "log"
        return [line.replace(str(self.disk), "") for line in (log.read_text().splitlines() if log.exists() else [])
                if line.startswith(f"{tool} ")]


def documented_commands():
    """Those for the Mac, and those of the table for each user."""
    section = DOCUMENT.read_text().split("\n## Removing\n")[1].split("\n## ")[0]
    by_hand = section.split("By hand, ")[1]
    block = re.search(r"```sh\n(.*?)```", by_hand, re.DOTALL)[1]
    rows = re.findall(r"^\| [^|]+ \| `([^`|]+)` \|$", section, re.MULTILINE)
    return block, rows


class RemoveKarno(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def mac(self, name="one", **options):
        return Mac(self.folder / name, **options)

    def test_takes_away_what_the_document_does(self):
        by_script, by_hand = self.mac("script"), self.mac("hand")
        block, rows = documented_commands()
        lines = re.sub(r"(?<= )/(?=Applications|Library|usr/local)", f"{by_hand.disk}/", "\n".join([block, *rows]))

        status, _, said = by_script.run()
        hand = subprocess.run(["bash", "-e", "-c", lines], capture_output=True, text=True, check=False, env=by_hand.
                              environment(USER_ID="501", PATH=f"{by_hand.karnoctl().parent}:{by_hand.disk}/usr/bin:"
                                                              f"{os.environ['PATH']}"))

        self.assertEqual((0, "", 0, ""), (status, said, hand.returncode, hand.stderr))
        self.assertEqual(7, len(rows))
        self.assertEqual(by_hand.files(), by_script.files())
        bootout = "launchctl bootout gui/501 /Library/LaunchAgents/it.vantul.karno.login.plist"
        self.assertEqual([bootout], by_hand.calls("launchctl"))
        self.assertIn(bootout, by_script.calls("launchctl"))

    def test_leaves_what_has_a_similar_name(self):
        mac = self.mac()
        before = mac.files()

        mac.run()

        after = mac.files()
        gone = {name for name in before if name not in after and before[name] != stat.S_IFDIR}
        karnoctl = "Applications/Karno.app/Contents/MacOS/karnoctl"
        settings = {f"Users/anna/Library/Preferences/{domain}.plist"
                    for domain in ("it.vantul.KarnoWrapper", "it.vantul.KarnoAdmin")}
        self.assertEqual({*ON_DISK, karnoctl, *(f"Users/anna/{name}" for name in IN_HOME), *settings}, gone)
        self.assertEqual({"ofTheClient": "stays"}, after["Users/anna/Library/Preferences/it.vantul.karno.plist"])

    def test_removes_links_and_not_what_they_lead_to(self):
        mac = self.mac()
        shutil.rmtree(mac.home() / "Library/Logs/Karno for macOS")
        (mac.home() / "Library/Logs/Karno for macOS").symlink_to(mac.home() / "Documents")

        status, _, _ = mac.run()

        self.assertEqual(0, status)
        self.assertFalse((mac.home() / "Library/Logs/Karno for macOS").is_symlink())
        self.assertTrue((mac.home() / "Documents/Karno for macOS/notes").is_file())

    def test_prints_what_it_would_take_away(self):
        mac = self.mac()
        before = mac.files()

        status, printed, said = mac.run("--dry-run")

        self.assertEqual((0, "", before), (status, said, mac.files()))
        self.assertEqual([], mac.calls("karnoctl"))
        self.assertEqual(mac.run()[1], printed)
        self.assertIn("rm -rf '/Users/anna/Library/Logs/Karno for macOS'\n", printed)
        self.assertEqual((0, "", ""), mac.run("--dry-run"))

    def test_prints_what_a_shell_would_take(self):
        mac, other = self.mac("it's"), self.mac("other")
        environment = mac.environment(USER_ID="501")
        printed = subprocess.run([SCRIPT, "--dry-run"], stdout=subprocess.PIPE, text=True, env=environment, check=True)

        subprocess.run(["sh", "-e", "-c", printed.stdout], env=environment, check=True)

        other.run(USER_ID="501")
        self.assertEqual(other.files(), mac.files())

    def test_of_a_user_leaves_the_macs_part(self):
        mac = self.mac()

        status, _, said = mac.run(USER_ID="501")

        after = mac.files()
        self.assertEqual((0, ""), (status, said))
        self.assertEqual(["karnoctl quit --wait 60", "karnoctl status"], mac.calls("karnoctl"))
        for name in ON_DISK:
            self.assertIn(name, after)
        for name in IN_HOME:
            self.assertNotIn(f"Users/anna/{name}", after)

    def test_looks_into_the_homes_of_those_who_are_named(self):
        mac = self.mac(users=("anna", "o.b-1", "third"))

        status, _, _ = mac.run("--user", "o.b-1", "--user", "anna")

        after = mac.files()
        self.assertEqual(0, status)
        for name in IN_HOME:
            self.assertEqual([False, False, True],
                             [f"Users/{user}/{name}" in after for user in ("anna", "o.b-1", "third")], name)

    def test_takes_the_macs_part_away_when_nobody_is_at_the_screen(self):
        for nobody in ("root", "loginwindow", ""):
            with self.subTest(nobody=nobody):
                mac = self.mac(f"disk-of-{nobody}")

                status, _, _ = mac.run(AT_THE_SCREEN=nobody)

                after = mac.files()
                self.assertEqual(0, status)
                self.assertFalse(set(ON_DISK) & set(after))
                self.assertIn(f"Users/anna/{IN_HOME[0]}", after)

    def test_takes_nothing_away_while_the_launcher_stays(self):
        for user_id in ("0", "501"):
            with self.subTest(user_id=user_id):
                mac = self.mac(f"disk-of-{user_id}")
                before = mac.files()

                refused = mac.run(USER_ID=user_id, QUIT_STATUS="4", STATUS_STATUS="0")

                self.assertEqual((1, "", STAYED), refused)
                self.assertEqual(before, mac.files())

    def test_takes_nothing_away_while_a_launcher_of_somebody_runs(self):
        for name in ("Contents/MacOS/Karno", "Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)"):
            with self.subTest(name=name):
                mac = self.mac(Path(name).name)
                running = self.start_in(mac, name)
                before = mac.files()

                refused = mac.run()

                self.assertEqual((1, "", STAYED), refused)
                self.assertEqual(before, mac.files())
                self.assertIsNone(running.poll())

    def test_waits_for_the_client_that_goes_with_its_launcher(self):
        mac = self.mac()
        client = self.start_in(mac, "Contents/Helpers/Karno.app/Contents/MacOS/Karno")

        status, _, said = mac.run(ENDS_MEANWHILE=str(client.pid))

        self.assertEqual((0, ""), (status, said))
        self.assertEqual(["sleep 1"], mac.calls("sleep"))

    def start_in(self, mac, name):
        """A program of that name in the bundle, which runs until the end of the test."""
        program = mac.disk / "Applications/Karno.app" / name
        program.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy("/bin/sleep", program)
        running = subprocess.Popen([program, "60"])
        self.addCleanup(running.wait)
        self.addCleanup(running.kill)
        return running

    def test_removes_the_rest_where_the_bundle_is_gone_already(self):
        mac = self.mac()
        shutil.rmtree(mac.disk / "Applications/Karno.app")

        status, _, said = mac.run()

        self.assertEqual((0, ""), (status, said))
        self.assertFalse(set(ON_DISK) & set(mac.files()))

    def test_tells_what_stays(self):
        mac = self.mac()
        mac.make_program(mac.disk / "usr/bin/rm",
                         'case "$*" in *Karno.app) echo "rm: Operation not permitted" >&2; exit 1 ;; esac\n'
                         'exec /bin/rm "$@"')

        status, _, said = mac.run()

        self.assertEqual((1, "rm: Operation not permitted\nremove-karno: not everything could be taken away\n"),
                         (status, said))
        self.assertIn("Applications/Karno.app", mac.files())
        self.assertNotIn("usr/local/bin/karnoctl", mac.files())

    def test_wants_a_home_folder(self):
        for home in ("", "Library", "/"):
            with self.subTest(home=home):
                mac = self.mac(f"home-{home.strip('/')}-")
                before = mac.files()

                refused = mac.run(USER_ID="501", HOME=home)

                self.assertEqual((1, "", "remove-karno: HOME is no home folder\n"), refused)
                self.assertEqual(before, mac.files())

    def test_is_the_same_in_another_shell(self):
        one, other = self.mac("one"), self.mac("other")

        one.run()
        status, _, said = other.run(shell=("dash",))

        self.assertEqual((0, ""), (status, said))
        self.assertEqual(one.files(), other.files())

    def test_says_how_it_is_used(self):
        mac = self.mac()
        before = mac.files()

        for word in ("-h", "--help"):
            status, printed, said = mac.run(word)
            self.assertEqual((0, ""), (status, said))
            self.assertIn("usage: remove-karno", printed)
        for words, sentence in ((["now"], "it takes no 'now'"), ([""], "it takes no ''"), (["--user"], "--user needs a name"),
                                (["--user", ""], "--user takes the name of a user"),
                                (["--user", "a b"], "--user takes the name of a user"),
                                (["--user", "../anna"], "--user takes the name of a user"),
                                (["--user", "-x"], "--user takes the name of a user"),
                                (["--user", b"\xff"], "--user takes the name of a user"),
                                (["--user", "nobody-knows"], "there is no user nobody-knows"),
                                (["--part", "all"], "there is no such part")):
            with self.subTest(words=words):
                self.assertEqual((os.EX_USAGE, "", f"remove-karno: {sentence}; see remove-karno --help\n"),
                                 mac.run(*words))
        self.assertEqual((os.EX_USAGE, "", "remove-karno: --user is for root; see remove-karno --help\n"),
                         mac.run("--user", "anna", USER_ID="501"))
        self.assertEqual(os.EX_USAGE, subprocess.run([SCRIPT, b"\xff"], stderr=subprocess.PIPE, check=False,
                                                     env=mac.environment()).returncode)
        self.assertEqual(before, mac.files())


if __name__ == "__main__":
    unittest.main()
