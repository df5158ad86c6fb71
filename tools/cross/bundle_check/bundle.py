"""Judges a whole bundle: its files, property lists and programs. Each finding is one sentence."""

import plistlib
import xml.parsers.expat

from . import embedded, icon, programs

PROGRAMS = ("Contents/MacOS/Karno", "Contents/MacOS/karnoctl")
# The example client, which only the cross-compiled bundle has.
EXAMPLES = tuple(f"Contents/Helpers/{name}.app/Contents/MacOS/{name}" for name in embedded.HELPERS)
# Those of the texts, beside English, which is the base.
LANGUAGES = ("de", "es", "fr", "it", "ja", "ko", "nl", "pt-BR", "zh-Hans", "zh-Hant")
OTHER_FILES = (
    "Contents/PkgInfo",
    "Contents/Resources/Notices.txt",
    "Contents/Resources/man/man1/karnoctl.1",
    "Contents/Resources/completions/bash/karnoctl",
    "Contents/Resources/completions/zsh/_karnoctl",
    *(f"Contents/Resources/{language}.lproj/{table}" for language in ("Base", *LANGUAGES)
      for table in ("Strings.json", "MoveApplication.strings", "InfoPlist.strings")),
)
ICON = "Contents/Resources/Karno.icns"
FOLDERS = ("Contents/Frameworks", "Contents/Helpers")

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


LAUNCHER_KEYS = COMMON_KEYS | {
    "CFBundleExecutable": "Karno",
    "CFBundleIconFile": "Karno",
    "CFBundleIdentifier": "it.vantul.KarnoWrapper",
    "CFBundleLocalizations": ["en", *LANGUAGES],
    "CFBundleName": "Karno",
    "CFBundleSupportedPlatforms": ["MacOSX"],
    "KarnoUpdateFeedHost": None,
    "LSApplicationCategoryType": "public.app-category.utilities",
    "LSMinimumSystemVersionByArchitecture": {"arm64": "11.0", "x86_64": "10.14.6"},
    "NSAppleEventsUsageDescription": None,
    "NSDesktopFolderUsageDescription": None,
    "NSDocumentsFolderUsageDescription": None,
    "NSDownloadsFolderUsageDescription": None,
    "NSHumanReadableCopyright": None,
    "NSNetworkVolumesUsageDescription": None,
    "NSRemovableVolumesUsageDescription": None,
    "SUPublicEDKey": None,
    "SUVerifyUpdateBeforeExtraction": True,
}


def programs_of(is_package):
    return PROGRAMS if is_package else PROGRAMS + EXAMPLES


def plists(is_package):
    """Info.plist path to the keys and values it must have."""
    yield "Contents/Info.plist", LAUNCHER_KEYS
    for name, identifier in {} if is_package else embedded.HELPERS.items():
        helper = {"CFBundleExecutable": name, "CFBundleIconFile": "Karno", "CFBundleIdentifier": identifier,
                  "CFBundleName": name}
        yield f"Contents/Helpers/{name}.app/Contents/Info.plist", COMMON_KEYS | helper


def findings(app, declarations, build_folders, is_package=False):
    """A package may have other people's helpers and framework, or none; they are looked at from the outside."""
    wanted = dict(plists(is_package))
    for name in (*wanted, *programs_of(is_package), *OTHER_FILES, ICON):
        if not (app / name).is_file():
            yield f"{name} is missing."
    for name in FOLDERS:
        if not (app / name).is_dir():
            yield f"{name} is missing."
    for name, keys in wanted.items():
        if (app / name).is_file():
            yield from plist_findings(app / name, name, keys)
    for name in programs_of(is_package):
        if (app / name).is_file():
            yield from programs.findings(app / name, name, declarations, build_folders)
    if (app / ICON).is_file():
        yield from icon.findings(app / ICON, ICON)
    if is_package:
        yield from embedded.findings(app / "Contents")


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
