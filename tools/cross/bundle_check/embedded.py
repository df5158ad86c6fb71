"""Judges what others make and the package carries: both builds of the client, and the framework that updates.

Each finding is one sentence.
"""

import os
import plistlib

from . import mach_o, programs

# Name of each build to its identifier.
HELPERS = {"Karno": "it.vantul.Karno", "Karno(Fuse)": "it.vantul.KarnoFuse"}
FRAMEWORK = "Sparkle.framework"
FRAMEWORK_IDENTIFIER = "org.sparkle-project.Sparkle"


def findings(contents):
    """Of a package, which may go without the ones and without the other."""
    for folder, judge in (("Helpers", helpers_findings), ("Frameworks", frameworks_findings)):
        if (contents / folder).is_dir() and any((contents / folder).iterdir()):
            yield from judge(contents / folder)


def helpers_findings(folder):
    for name, identifier in HELPERS.items():
        yield from helper_findings(folder / f"{name}.app", identifier)


def frameworks_findings(folder):
    yield from framework_findings(folder / FRAMEWORK)


def helper_findings(app, identifier):
    if not app.exists():
        yield f"{app.name} is missing."
        return
    information = property_list(app / "Contents/Info.plist")
    if information is None:
        yield f"{app.name} is no bundle: it has no Contents/Info.plist that can be read."
        return
    found = information.get("CFBundleIdentifier")
    if found != identifier:
        yield f"{app.name} has the identifier {found!r} instead of {identifier!r}."
    executable = f"Contents/MacOS/{information.get('CFBundleExecutable')}"
    if not is_program(app / executable):
        yield f"{app.name} is no bundle: {executable} is not there, or not executable."
    yield from tree_findings(app)


def framework_findings(framework):
    if framework.name != FRAMEWORK:
        yield f"{framework.name} is not called {FRAMEWORK}."
        return
    information = property_list(framework / "Resources/Info.plist")
    if not (framework / "Versions").is_dir() or information is None:
        yield f"{FRAMEWORK} is no framework: it has no Versions, or no Resources/Info.plist that can be read."
        return
    # Copied by something that follows links, it could not be signed any more.
    if not (framework / "Versions/Current").is_symlink():
        yield f"{FRAMEWORK} has lost its links: Versions/Current is none."
    found = information.get("CFBundleIdentifier")
    if found != FRAMEWORK_IDENTIFIER:
        yield f"{FRAMEWORK} has the identifier {found!r} instead of {FRAMEWORK_IDENTIFIER!r}."
    yield from processor_findings(framework / "Sparkle", f"{FRAMEWORK}/Sparkle")
    yield from tree_findings(framework)


def processor_findings(library, label):
    if not library.is_file():
        yield f"{label} is missing."
        return
    try:
        missing = missing_processors(library)
    except mach_o.NotMachO as problem:
        yield f"{label} {problem}."
        return
    for processor in missing:
        yield f"{label} has no {processor} slice."


def missing_processors(program):
    found = {part.processor for part in mach_o.read_slices(program)}
    return [processor for processor in programs.MINIMUM_VERSIONS if processor not in found]


def helpers_without_processors(folder):
    """What a client may be, but should say: (bundle's name, processor) for each program that is missing."""
    for name in HELPERS:
        app = folder / f"{name}.app"
        executable = app / "Contents/MacOS" / property_list(app / "Contents/Info.plist")["CFBundleExecutable"]
        try:
            missing = missing_processors(executable)
        except mach_o.NotMachO:
            continue
        for processor in missing:
            yield app.name, processor


def tree_findings(top):
    """Links stay inside and lead somewhere, and nothing else than files, folders and links is there."""
    whole = os.path.realpath(top)
    for folder, folders, files in os.walk(top):
        for entry in sorted(folders + files):
            path = os.path.join(folder, entry)
            label = f"{top.name}/{os.path.relpath(path, top)}"
            if os.path.islink(path):
                end = os.path.realpath(path)
                if os.path.isabs(os.readlink(path)) or os.path.commonpath([whole, end]) != whole:
                    yield f"{label} is a link that leads out of it."
                elif not os.path.exists(path):
                    yield f"{label} is a link that leads nowhere."
            elif not os.path.isfile(path) and not os.path.isdir(path):
                yield f"{label} is neither a file nor a folder."


def property_list(path):
    """The dictionary in the file, or None."""
    try:
        content = plistlib.loads(path.read_bytes())
    except Exception:  # no file, or whatever the parsers raise
        return None
    return content if isinstance(content, dict) else None


def is_program(path):
    return path.is_file() and os.access(path, os.X_OK)
