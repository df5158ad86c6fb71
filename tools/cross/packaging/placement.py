"""Puts something finished where its last version may lie, in one step, so that one of them is always there."""

import ctypes
import errno
import os
import shutil

AT_FDCWD = -100
RENAME_EXCHANGE = 2
# Not every file system can exchange two folders.
CANNOT_EXCHANGE = (errno.EINVAL, errno.ENOSYS, errno.EOPNOTSUPP)


def put_in_place(finished, destination):
    """Both lie on one file system. The last version is removed."""
    if not destination.is_dir():
        os.replace(finished, destination)
    elif exchange(finished, destination):
        shutil.rmtree(finished)
    else:
        aside = finished.with_name(f"{finished.name}.last")
        os.rename(destination, aside)
        os.rename(finished, destination)
        shutil.rmtree(aside)


def exchange(one, other):
    """Whether they could be exchanged."""
    rename = ctypes.CDLL(None, use_errno=True).renameat2
    if rename(AT_FDCWD, os.fsencode(one), AT_FDCWD, os.fsencode(other), RENAME_EXCHANGE) == 0:
        return True
    problem = ctypes.get_errno()
    if problem not in CANNOT_EXCHANGE:
        raise OSError(problem, os.strerror(problem), str(other))
    return False
