"""Puts the bundle together from what was built and what others made."""

import shutil
import stat
from pathlib import Path

from bundle_check import embedded

FOLDER_MODE = 0o755
PROGRAM_MODE = 0o755
FILE_MODE = 0o644


def assemble(built, helpers, framework, app):
    """Makes `app` from the built bundle without its example client. Either of the others may be None."""
    def is_left_out(folder, names):
        return {"Helpers", "Frameworks"}.intersection(names) if Path(folder) == built / "Contents" else ()

    shutil.copytree(built, app, symlinks=True, ignore=is_left_out)
    for folder in ("Helpers", "Frameworks"):
        (app / "Contents" / folder).mkdir()
    if helpers is not None:
        for name in embedded.HELPERS:
            copy_tree(helpers / f"{name}.app", app / "Contents/Helpers" / f"{name}.app")
    if framework is not None:
        copy_tree(framework, app / "Contents/Frameworks" / embedded.FRAMEWORK)
    set_modes(app)


def copy_tree(source, destination):
    shutil.copytree(source, destination, symlinks=True)


def set_modes(top):
    """The same modes whatever the umask was when the parts were made."""
    top.chmod(FOLDER_MODE)
    for path in top.rglob("*"):
        if path.is_symlink():
            continue
        if path.is_dir():
            path.chmod(FOLDER_MODE)
        else:
            path.chmod(PROGRAM_MODE if path.stat().st_mode & stat.S_IXUSR else FILE_MODE)
