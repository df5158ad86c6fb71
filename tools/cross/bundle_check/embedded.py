"""Judges what others make and the package carries: both builds of the client, and the framework that updates.

Each finding is one sentence.
"""

import os
import plistlib
import re

from . import mach_o, programs

# Name of each build to its identifier.
HELPERS = {"Karno": "it.vantul.Karno", "Karno(Fuse)": "it.vantul.KarnoFuse"}
FRAMEWORK = "Sparkle.framework"
FRAMEWORK_IDENTIFIER = "org.sparkle-project.Sparkle"
# The first that the launcher is written for.
FRAMEWORK_VERSION_MIN = (2, 9)
# What installs an update once the launcher has ended: programs in the framework's version, and bundles with one.
FRAMEWORK_PROGRAMS = ("Autoupdate",)
FRAMEWORK_BUNDLES = ("Updater.app", "XPCServices/Downloader.xpc", "XPCServices/Installer.xpc")


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
    yield from framework_version_findings(information.get("CFBundleShortVersionString"))
    yield from code_findings(framework / "Sparkle", f"{FRAMEWORK}/Sparkle", mach_o.MH_DYLIB)
    yield from framework_helper_findings(framework / "Versions/Current")
    yield from tree_findings(framework)


def framework_version_findings(version):
    lowest = ".".join(map(str, FRAMEWORK_VERSION_MIN))
    numbers = re.match(r"[0-9]+(\.[0-9]+)*", str(version))
    if numbers is None:
        yield f"{FRAMEWORK} has no version, which should be {lowest} or newer."
    elif tuple(map(int, numbers[0].split("."))) < FRAMEWORK_VERSION_MIN:
        yield f"{FRAMEWORK} has the version {version}, which should be {lowest} or newer."


def framework_helper_findings(version):
    for name in FRAMEWORK_PROGRAMS:
        yield from program_findings(version / name, f"{FRAMEWORK}/{name}")
    for name in FRAMEWORK_BUNDLES:
        information = property_list(version / name / "Contents/Info.plist")
        if information is None:
            yield f"{FRAMEWORK}/{name} is missing, or has no Contents/Info.plist that can be read."
            continue
        executable = f"{name}/Contents/MacOS/{information.get('CFBundleExecutable')}"
        yield from program_findings(version / executable, f"{FRAMEWORK}/{executable}")


def program_findings(program, label):
    yield from code_findings(program, label, mach_o.MH_EXECUTE)
    if program.is_file() and not is_program(program):
        yield f"{label} is not executable."


def code_findings(path, label, kind):
    """Whether it is a program or a library, for every processor."""
    if not path.is_file():
        yield f"{label} is missing."
        return
    try:
        slices = mach_o.read_slices(path)
    except mach_o.NotMachO as problem:
        yield f"{label} {problem}."
        return
    wanted = {mach_o.MH_DYLIB: "dynamic library", mach_o.MH_EXECUTE: "program that can be started"}[kind]
    for part in slices:
        if part.kind() != kind:
            yield f"{label} ({part.processor}) is no {wanted}."
    for processor in missing_processors(path):
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
