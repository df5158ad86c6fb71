"""The clients in one file: what they refuse, whom they end with, and what the documents have of them."""

import os
import re
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
SOURCES = PROJECT / "examples/one_file_clients"
BUILT, OF_A_MAC = Path(sys.argv[1]), Path(sys.argv[2])
CLIENTS = BUILT, OF_A_MAC, SOURCES / "client.py", SOURCES / "client.sh"
NOTIFICATION = "it.vantul.Karno.KarnoWrapperNotification"
LINES_OF_A_PAGE = 82


def run(client, *words, **variables):
    return subprocess.run([client, *words], stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=30,
                          env=os.environ | variables, check=False)


def is_running(process):
    """Not counting one that has ended and that nobody has asked about."""
    try:
        return Path(f"/proc/{process}/stat").read_text().rpartition(") ")[2][0] != "Z"
    except FileNotFoundError:
        return False


def fifo_with(folder, text):
    """A FIFO that has the text in it for as long as the descriptor is open."""
    path = Path(folder) / "user"
    os.mkfifo(path)
    descriptor = os.open(path, os.O_RDWR)
    os.write(descriptor, text.encode())
    return path, descriptor


class OneFileClients(unittest.TestCase):
    def test_fit_on_a_page(self):
        for source in ("client.cpp", "client.py", "client.sh"):
            self.assertLessEqual(len((SOURCES / source).read_text().splitlines()), LINES_OF_A_PAGE, source)

    def test_take_one_argument_with_a_blank_in_it(self):
        for client in CLIENTS:
            for words in ([], ["--parent", "1"], ["--parent 1", "more"], ["--parent "], ["--parent 0"], ["--parent x"],
                          ["--parent 12x"], ["--parent -1"], ["--parent 99999999999"], [b"--parent \xff"]):
                with self.subTest(client=client.name, words=words):
                    told = run(client, *words)

                    self.assertEqual((os.EX_USAGE, "client: it takes one argument, \"--parent N\", a single word with a "
                                                   "blank in it\n"), (told.returncode, told.stderr))

    def test_read_nothing_but_a_fifo(self):
        for client in CLIENTS:
            for name in ("/etc/passwd", "/nowhere", ""):
                with self.subTest(client=client.name, name=name):
                    told = run(client, f"--parent {os.getpid()}", KARNO_CLIENT_MESSAGES=name)

                    self.assertEqual((os.EX_USAGE, "client: KARNO_CLIENT_MESSAGES names no FIFO\n"),
                                     (told.returncode, told.stderr))

    def test_end_at_once_when_their_parent_is_another(self):
        for client in CLIENTS:
            with self.subTest(client=client.name):
                told = run(client, "--parent 1000000000")

                self.assertEqual((0, ""), (told.returncode, told.stderr))

    def test_end_with_their_launcher(self):
        for client in CLIENTS:
            with self.subTest(client=client.name):
                launcher = subprocess.Popen(["/bin/sh", "-c", '"$0" "--parent $$" >/dev/null & echo $!; read -r answer',
                                             client], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
                process = int(launcher.stdout.readline())
                time.sleep(1.5)  # longer than they take from one look to the next
                ran = is_running(process)

                launcher.kill()
                launcher.communicate()

                deadline = time.monotonic() + 20
                while is_running(process) and time.monotonic() < deadline:
                    time.sleep(0.05)
                self.assertEqual((True, False), (ran, is_running(process)))

    def test_of_a_mac_post_by_its_framework(self):
        with tempfile.TemporaryDirectory() as folder:
            path, descriptor = fifo_with(folder, "app-is-terminating-abnormally=disk=full\nuser-selected-quit\n")

            told = run(OF_A_MAC, f"--parent {os.getpid()}", KARNO_CLIENT_MESSAGES=str(path))

            os.close(descriptor)
            begin = f"{NOTIFICATION} {NOTIFICATION} 1 message="
            self.assertEqual((0, f"{begin}app-is-terminating-abnormally reason=disk=full\n{begin}user-selected-quit\n"
                                 "0 dictionaries and 0 strings are left\n"), (told.returncode, told.stdout))

    def test_survive_a_line_that_cannot_be_posted(self):
        nowhere = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
        with tempfile.TemporaryDirectory() as folder:
            path, descriptor = fifo_with(folder, "user-selected-quit\n")
            client = subprocess.Popen([BUILT, f"--parent {os.getpid()}"], stderr=subprocess.PIPE, text=True,
                                      env=os.environ | nowhere | {"KARNO_CLIENT_MESSAGES": str(path)})

            said = client.stderr.readline()
            ran = client.poll() is None

            client.kill()
            client.communicate()
            os.close(descriptor)
            self.assertRegex(said, "^client: .+\n$")
            self.assertTrue(ran)


class Document(unittest.TestCase):
    """The examples in docs/protocol.md, each as the compiler or shell sees it that is here."""

    def setUp(self):
        self.text = (PROJECT / "docs/protocol.md").read_text()

    def blocks(self, language):
        return re.findall(rf"^```{language}\n(.*?)^```$", self.text, re.MULTILINE | re.DOTALL)

    def checked(self, command, text):
        done = subprocess.run(command, input=text, capture_output=True, text=True, timeout=120, check=False)
        return done.returncode, done.stderr

    def test_has_objective_c_that_a_compiler_takes(self):
        headers = subprocess.run(["gcc", "-print-file-name=include"], stdout=subprocess.PIPE, text=True, check=True)
        command = ["clang-14", "-fsyntax-only", "-x", "objective-c", "-fobjc-runtime=gnustep-1.9", "-Wall", "-Wextra",
                   "-Werror", "-isystem", "/usr/include/GNUstep", "-isystem", headers.stdout.strip(), "-"]

        results = [self.checked(command, block) for block in self.blocks("objc")]

        self.assertEqual([(0, "")], results)

    def test_has_lines_that_a_shell_takes(self):
        results = [self.checked(["bash", "-n"], block) for block in self.blocks("sh")]

        self.assertGreater(len(results), 1)
        self.assertEqual({(0, "")}, set(results))

    def test_names_every_client(self):
        for source in ("client.cpp", "client.py", "client.sh"):
            self.assertIn(f"](../examples/one_file_clients/{source})", self.text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
