"""Judges one program of the bundle. Each finding is one sentence."""

from pathlib import Path

from . import code_signature, mach_o, text_stubs

MINIMUM_VERSIONS = {"x86_64": "10.14", "arm64": "11.0"}
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
    for program in slices:
        label = f"{name} ({program.processor})"
        yield from version_findings(program, label)
        yield from library_findings(program, label, declarations)
        yield from import_findings(program, label, declarations)
        yield from content_findings(program, label, build_folders)


def version_findings(program, label):
    wanted = MINIMUM_VERSIONS[program.processor]
    found = program.minimum_version()
    if found is None:
        yield f"{label} does not say which macOS it needs."
    elif found != wanted:
        yield f"{label} needs macOS {found} instead of {wanted}."


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
