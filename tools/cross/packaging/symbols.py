"""Keeps the programs as they were before they were stripped: crash reports are read with them."""

import shutil
from pathlib import Path

from bundle_check import bundle, mach_o

LIST = "UUIDs"


class NotItsSymbols(Exception):
    """They are missing or those of other programs; the text is a sentence."""


def beside(built):
    """Where the cross build leaves them."""
    return built.parent / "symbols"


def collect(app, source, folder):
    """Makes `folder` with the programs in `source` that belong to those of the bundle, and a list of their UUIDs."""
    folder.mkdir()
    rows = []
    for name in bundle.PROGRAMS:
        kept = source / Path(name).name
        if not kept.is_file():
            raise NotItsSymbols(f"{kept} is missing.")
        shutil.copyfile(kept, folder / kept.name)
        # It is read, never run: its signature no longer fits.
        (folder / kept.name).chmod(0o644)
        rows += matched_uuids(app / name, kept)
    (folder / LIST).write_text("".join(f"{identifier} ({processor}) {name}\n" for identifier, processor, name in rows))
    (folder / LIST).chmod(0o644)
    folder.chmod(0o755)


def matched_uuids(program, kept):
    """(UUID, processor, name) of each slice of the program, which the one with symbols has as well."""
    found = uuids(kept)
    for processor, identifier in uuids(program).items():
        if found.get(processor) != identifier:
            raise NotItsSymbols(f"The symbols of {program.name} ({processor}) have the UUID {found.get(processor)} "
                             f"instead of {identifier}: they are those of another build.")
        yield identifier, processor, program.name


def uuids(program):
    try:
        return {part.processor: part.uuid() for part in mach_o.read_slices(program)}
    except mach_o.NotMachO as problem:
        raise NotItsSymbols(f"{program} {problem}.") from None
