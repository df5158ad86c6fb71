#!/usr/bin/python3
"""A client in one file: reads its launcher's identifier, posts what it is told to, and ends after a farewell or with
its launcher. The FIFO that KARNO_CLIENT_MESSAGES names stands for a user: "message" or "message=reason", by line.
"""

import os
import re
import select
import subprocess
import sys
import time
from pathlib import Path

# Beside the launcher, in the bundle that this client lies in as Contents/Helpers/Karno.app/Contents/MacOS/Karno.
KARNOCTL = Path(__file__).resolve().parents[4] / "MacOS/karnoctl"
FAREWELLS = {"user-selected-quit", "app-is-terminating", "app-needs-restart", "restart-wrapper",
             "restart-wrapper-with-fuse", "restart-wrapper-with-file-provider"}
SECONDS_FROM_FAREWELL_TO_END = 0.5  # the launcher has to hear it before it sees this process end


def misused(text):
    print(f"client: {text}", file=sys.stderr)
    sys.exit(os.EX_USAGE)


def parent_from(words):
    """The launcher's process: one word with a blank in it."""
    found = re.fullmatch(r"--parent ([1-9][0-9]{0,9})", words[0]) if len(words) == 1 else None
    if not found:
        misused('it takes one argument, "--parent N", a single word with a blank in it')
    return int(found[1])


def user():
    """What can be waited for: no descriptor, or one that never ends as it is open for writing, too."""
    fifo = os.environ.get("KARNO_CLIENT_MESSAGES")
    if fifo is not None and not Path(fifo).is_fifo():
        misused("KARNO_CLIENT_MESSAGES names no FIFO")
    return [] if fifo is None else [os.open(fifo, os.O_RDWR)]


def post(message, reason):
    """Whether it could be posted; the tool has said why not."""
    more = ["--reason", reason] if reason else []
    return subprocess.run([KARNOCTL, "post", message, *more], check=False).returncode == 0


def lines_of_user(parent):
    """Ends when the launcher has: a process whose parent has ended gets another one."""
    words, text = user(), b""
    while os.getppid() == parent:
        ready, _, _ = select.select(words, [], [], 1.0)
        if ready:
            *lines, text = (text + os.read(ready[0], 4096)).split(b"\n")
            yield from (line.decode(errors="replace") for line in lines)


def main():
    for line in lines_of_user(parent_from(sys.argv[1:])):
        message, _, reason = line.partition("=")
        if post(message, reason) and message in FAREWELLS:
            time.sleep(SECONDS_FROM_FAREWELL_TO_END)
            return


main()
