"""Puts the table that closes a run of the benchmarks into a page, between two marks, with the machine it ran on.

usage: put_figures.py PAGE < OUTPUT
"""

import datetime
import os
import re
import sys
from pathlib import Path

BEGIN, END = "<!-- measured -->", "<!-- end of measured -->"
HEADER = ["NAME", "ours", "beside", "ratio", "bound", "holds"]


def rows_in(output):
    """The rows of the closing table, each a list of its six cells."""
    cells = [[cell.strip() for cell in line.split(" | ")] for line in output.splitlines()]
    if HEADER not in cells:
        raise ValueError("there is no table of figures")
    rows = []
    for row in cells[cells.index(HEADER) + 1:]:
        if len(row) != len(HEADER):
            break
        rows.append(row)
    return rows


def machine():
    """In words, what everything was measured on: nothing that names the machine itself."""
    cpu = re.search(r"^model name\s*: (.+)$", Path("/proc/cpuinfo").read_text(encoding="utf-8"), re.MULTILINE)
    memory = int(re.search(r"^MemTotal:\s*(\d+)", Path("/proc/meminfo").read_text(encoding="utf-8"),
                           re.MULTILINE)[1])
    system = re.search(r'^PRETTY_NAME="(.+)"$', Path("/etc/os-release").read_text(encoding="utf-8"), re.MULTILINE)
    return (f"{len(os.sched_getaffinity(0))} processors ({cpu[1] if cpu else os.uname().machine}), "
            f"{round(memory / 1024 / 1024)} GiB of memory, {system[1] if system else 'Linux'}, "
            f"kernel {os.uname().release.split('-')[0]}")


def table(rows):
    lines = ["| What, beside what | Karno | beside | ratio | bound | |", "|---|---|---|---|---|---|"]
    lines += [f"| {' | '.join(row[:5])} | {row[5] if row[5] == 'holds' else '**' + row[5] + '**'} |" for row in rows]
    return "\n".join(lines)


def with_figures(page, output, day, place):
    """The page, with everything between its marks replaced."""
    rows = rows_in(output)
    before, begin, rest = page.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise ValueError(f"the page lacks {BEGIN} or {END}")
    return f"{before}{BEGIN}\nMeasured on {day}: {place}.\n\n{table(rows)}\n{END}{after}"


def main():
    page = Path(sys.argv[1])
    try:
        text = with_figures(page.read_text(encoding="utf-8"), sys.stdin.read(),
                            datetime.date.today().isoformat(), machine())
    except ValueError as failure:
        sys.exit(f"put_figures: {failure}")
    new = page.with_name(f".{page.name}.new")
    new.write_text(text, encoding="utf-8")
    new.replace(page)


if __name__ == "__main__":
    main()
