"""Packs a bundle: links stay links, modes stay, and the same bundle gives the same bytes."""

import os
import shutil
import stat
import time
import zipfile

UNIX = 3
# MS-DOS's mark of a folder, which some readers go by.
FOLDER_ATTRIBUTE = 0x10
# The format knows no dates but those between.
FIRST_DATE = (1980, 1, 1, 0, 0, 0)
LAST_DATE = (2107, 12, 31, 23, 59, 58)


def pack(app, archive, seconds):
    """Writes the zip file `archive` with `app` at its top. Every entry has the date `seconds`, counted since 1970."""
    date = min(LAST_DATE, max(FIRST_DATE, time.gmtime(seconds)[:6]))
    with zipfile.ZipFile(archive, "w") as packed:
        for path in (app, *sorted(app.rglob("*"), key=os.fsencode)):
            add(packed, path, str(path.relative_to(app.parent)), date)


def add(packed, path, name, date):
    mode = path.lstat().st_mode
    is_folder = stat.S_ISDIR(mode)
    entry = zipfile.ZipInfo(f"{name}/" if is_folder else name, date)
    entry.create_system = UNIX
    entry.external_attr = mode << 16 | (FOLDER_ATTRIBUTE if is_folder else 0)
    if is_folder:
        packed.writestr(entry, b"")
    elif stat.S_ISLNK(mode):
        packed.writestr(entry, os.fsencode(os.readlink(path)))
    else:
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.file_size = path.stat().st_size
        with open(path, "rb") as source, packed.open(entry, "w") as target:
            shutil.copyfileobj(source, target, 1 << 20)
