"""Judges a whole bundle: its files, property lists and programs. Each finding is one sentence."""

import plistlib
import xml.parsers.expat

from . import programs

HELPERS = {"Karno": "it.vantul.Karno", "Karno(Fuse)": "it.vantul.KarnoFuse"}
PROGRAMS = (
    "Contents/MacOS/Karno",
    "Contents/MacOS/karnoctl",
    *(f"Contents/Helpers/{name}.app/Contents/MacOS/{name}" for name in HELPERS),
)
# Those of the texts, beside English, which is the base.
LANGUAGES = ("de", "es", "fr", "it", "ja", "ko", "nl", "pt-BR", "zh-Hans", "zh-Hant")
OTHER_FILES = (
    "Contents/PkgInfo",
    "Contents/Resources/man/man1/karnoctl.1",
    "Contents/Resources/completions/bash/karnoctl",
    "Contents/Resources/completions/zsh/_karnoctl",
    *(f"Contents/Resources/{language}.lproj/{table}" for language in ("Base", *LANGUAGES)
      for table in ("Strings.json", "MoveApplication.strings")),
)
FOLDERS = ("Contents/Frameworks",)

# None: any text that is not empty.
COMMON_KEYS = {
    "CFBundleDevelopmentRegion": "en",
    "CFBundleInfoDictionaryVersion": "6.0",
    "CFBundlePackageType": "APPL",
    "CFBundleShortVersionString": None,
    "CFBundleVersion": None,
    "LSMinimumSystemVersion": "10.14.6",
    "LSUIElement": True,
    "NSHighResolutionCapable": True,
    "NSPrincipalClass": "NSApplication",
}


def plists():
    """Info.plist path to the keys and values it must have."""
    launcher = {
        "CFBundleExecutable": "Karno",
        "CFBundleIdentifier": "it.vantul.KarnoWrapper",
        "CFBundleLocalizations": ["en", *LANGUAGES],
        "CFBundleName": "Karno",
        "NSHumanReadableCopyright": None,
    }
    yield "Contents/Info.plist", COMMON_KEYS | launcher
    for name, identifier in HELPERS.items():
        helper = {"CFBundleExecutable": name, "CFBundleIdentifier": identifier, "CFBundleName": name}
        yield f"Contents/Helpers/{name}.app/Contents/Info.plist", COMMON_KEYS | helper


def findings(app, declarations, build_folders):
    wanted = dict(plists())
    for name in (*wanted, *PROGRAMS, *OTHER_FILES):
        if not (app / name).is_file():
            yield f"{name} is missing."
    for name in FOLDERS:
        if not (app / name).is_dir():
            yield f"{name} is missing."
    for name, keys in wanted.items():
        if (app / name).is_file():
            yield from plist_findings(app / name, name, keys)
    for name in PROGRAMS:
        if (app / name).is_file():
            yield from programs.findings(app / name, name, declarations, build_folders)


def plist_findings(path, name, keys):
    try:
        content = plistlib.loads(path.read_bytes())
    except (plistlib.InvalidFileException, xml.parsers.expat.ExpatError, ValueError) as problem:
        yield f"{name} is no property list: {problem}."
        return
    for key, value in keys.items():
        found = content.get(key)
        if found is None or found == "":
            yield f"{name} has no {key}."
        elif value is not None and found != value:
            yield f"{name} has {found!r} for {key} instead of {value!r}."
