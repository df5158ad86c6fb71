"""Judges one program of the bundle. Each finding is one sentence."""

from pathlib import Path

from . import code_signature, mach_o, text_stubs

MINIMUM_VERSIONS = {"x86_64": "10.14", "arm64": "11.0"}
# AppKit treats programs for older ones as they were treated then. From macOS 11 on its alerts look as they do now.
SDK_MIN = 11 << 16
# By which a program is known to the loader.
EXPORTED = "__mh_execute_header"
SIZE_BYTES_MAX = 4 << 20
# Where macOS keeps its own libraries.
SYSTEM_FOLDERS = ("/usr/lib/", "/System/Library/")
# Where the programs of a Linux machine lie. The build's own folders are added by the caller.
LINUX_FOLDERS = (b"/home/", b"/root/", b"/usr/include/", b"/usr/local/", b"/.cache/")


class Declarations:
    """What the stubs declare, read once per library and processor."""

    def __init__(self, stubs):
        self.tables = {
            processor: dict(text_stubs.declared_symbols(stub, processor) for stub in stubs)
            for processor in MINIMUM_VERSIONS
        }

    def libraries(self, processor):
        return self.tables[processor].keys()

    def symbols_by_short_name(self, processor):
        return {Path(name).name.split(".")[0]: symbols for name, symbols in self.tables[processor].items()}


def findings(path, name, declarations, build_folders):
    if path.stat().st_size > SIZE_BYTES_MAX:
        yield f"{name} has {path.stat().st_size} bytes, more than {SIZE_BYTES_MAX}."
    if not path.stat().st_mode & 0o111:
        yield f"{name} is not executable."
    try:
        slices = mach_o.read_slices(path)
    except mach_o.NotMachO as problem:
        yield f"{name} {problem}."
        return
    found = {program.processor for program in slices}
    for processor in MINIMUM_VERSIONS:
        if processor not in found:
            yield f"{name} has no {processor} slice."
    yield from uuid_findings(slices, name)
    for program in slices:
        label = f"{name} ({program.processor})"
        yield from version_findings(program, label)
        yield from library_findings(program, label, declarations)
        yield from import_findings(program, label, declarations)
        yield from symbol_findings(program, label)
        yield from content_findings(program, label, build_folders)


def version_findings(program, label):
    wanted = MINIMUM_VERSIONS[program.processor]
    found = program.minimum_version()
    if found is None:
        yield f"{label} does not say which macOS it needs."
    elif found != wanted:
        yield f"{label} needs macOS {found} instead of {wanted}."
    sdk = program.sdk_version()
    if not sdk:
        yield f"{label} does not say which SDK it was built for."
    elif sdk < SDK_MIN:
        found, lowest = map(mach_o.version_text, (sdk, SDK_MIN))
        yield f"{label} was built for the SDK of macOS {found}, before {lowest}."


def uuid_findings(slices, name):
    """Without one of its own, a crash report does not tell which program it is about."""
    found = [program.uuid() for program in slices]
    for program, identifier in zip(slices, found):
        if identifier is None:
            yield f"{name} ({program.processor}) has no UUID."
    known = [identifier for identifier in found if identifier is not None]
    if len(set(known)) < len(known):
        yield f"{name} has the same UUID for several processors."


def library_findings(program, label, declarations):
    for library in program.libraries():
        if not library.startswith(SYSTEM_FOLDERS):
            yield f"{label} links {library}, which is no part of macOS."
        elif library not in declarations.libraries(program.processor):
            yield f"{label} links {library}, which is not one of the libraries it may use."


def import_findings(program, label, declarations):
    declared = declarations.symbols_by_short_name(program.processor)
    for row in program.imports():
        # A library that is not declared at all has its own finding.
        if row.library in declared and row.symbol not in declared[row.library]:
            yield f"{label} imports {row.symbol} from {row.library}, which does not declare it."


def symbol_findings(program, label):
    """macOS has libraries in every process whose symbols have the same names."""
    for symbol in program.exports():
        if symbol != EXPORTED:
            yield f"{label} exports {symbol}, which other libraries would then use."
    for symbol in sorted({symbol for _, symbol in program.weak_binds()}):
        yield f"{label} binds {symbol} weakly, so another library's takes its place."


def content_findings(program, label, build_folders):
    if program.has_private_symbols():
        yield f"{label} is not stripped."
    if program.processor == "arm64" and not code_signature.is_valid(program):
        yield f"{label} has no valid code signature, so Apple silicon does not start it."
    for folder in (*LINUX_FOLDERS, *build_folders):
        if folder in program.content:
            yield f"{label} holds a path of the building machine: {text_around(program.content, folder)}"


def text_around(content, folder):
    start = content.index(folder)
    begin = content.rfind(b"\0", 0, start) + 1
    return content[max(begin, start - 80) : start + 80].split(b"\0")[0].decode(errors="replace")
