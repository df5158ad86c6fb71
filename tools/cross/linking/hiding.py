"""Hides a program's own symbols, as a linker does that is told which ones to export.

The cross linker exports whatever its C++ library marks as visible, operator new and delete among them, and asks the
loader to look for another definition of each weak symbol, hidden ones too. macOS has a C++ library of its own in every
process, where the loader would find some: two libraries would then share an object that each has in its own shape.

The layouts are those of <mach-o/loader.h> and <mach-o/nlist.h>.
"""

import struct

from bundle_check import mach_o

# By which a program is known to the loader; it is where the program begins.
EXPORTED = b"__mh_execute_header"

MH_WEAK_DEFINES = 0x8000
MH_BINDS_TO_WEAK = 0x10000
FLAGS_OFFSET = 24
N_PEXT = 0x10
N_WEAK_DEF = 0x80
SYMBOL_BYTES = 16
INDIRECT_SYMBOL_LOCAL = 0x80000000
INDIRECT_SYMBOL_ABSOLUTE = 0x40000000


class CannotHide(Exception):
    """Why the program would not run any more; the text begins after its name."""


def hidden(program):
    """The bytes of the slice, with nothing exported but where it begins, and nothing bound weakly."""
    commands = {kind: body for kind, body in program.load_commands()}
    if mach_o.LC_DYLD_INFO_ONLY not in commands:
        raise CannotHide("has no table of what the loader binds")
    refuse_what_needs_a_weak_bind(program, commands)
    content = bytearray(program.content)
    flags = struct.unpack_from("<I", content, FLAGS_OFFSET)[0]
    struct.pack_into("<I", content, FLAGS_OFFSET, flags & ~(MH_WEAK_DEFINES | MH_BINDS_TO_WEAK))
    empty_weak_binds(content, commands)
    export_the_begin_alone(content, commands)
    hide_symbols(content, commands)
    return bytes(content)


def refuse_what_needs_a_weak_bind(program, commands):
    """Without it, a place has what another bind puts there, or else the program's own definition from the first."""
    bound, rebased = program.bound_addresses(), program.rebased_addresses()
    definitions = addresses_of_symbols(program.content, commands)
    for address, symbol in program.weak_binds():
        own = address in rebased and program.number_at(address) == definitions.get(symbol.encode())
        if address not in bound and not own:
            raise CannotHide(f"has nothing but a weak bind to put {symbol} at {address:#x}")


def addresses_of_symbols(content, commands):
    """Name to address; that of a symbol of another library is 0."""
    offset, count, names, _ = struct.unpack_from("<4I", commands[mach_o.LC_SYMTAB], 8)
    end = offset + SYMBOL_BYTES * count
    entries = (content[at : at + SYMBOL_BYTES] for at in range(offset, end, SYMBOL_BYTES))
    return {name_of(content, names, entry): struct.unpack_from("<Q", entry, 8)[0] for entry in entries}


def replace_command(content, old, new):
    place = content.index(old, 32)
    content[place : place + len(old)] = new


def replace_loader_info(content, commands, first_word, values):
    """Words of the command that names the loader's tables, counted from its first offset."""
    old = commands[mach_o.LC_DYLD_INFO_ONLY]
    new = bytearray(old)
    struct.pack_into(f"<{len(values)}I", new, 8 + 4 * first_word, *values)
    replace_command(content, old, new)
    commands[mach_o.LC_DYLD_INFO_ONLY] = bytes(new)


def empty_weak_binds(content, commands):
    offset, size = struct.unpack_from("<II", commands[mach_o.LC_DYLD_INFO_ONLY], 8 + 4 * 4)
    content[offset : offset + size] = bytes(size)
    replace_loader_info(content, commands, 4, (0, 0))


def export_the_begin_alone(content, commands):
    """The table is a tree of the names' beginnings: here a root with one branch, to the only name."""
    offset, size = struct.unpack_from("<II", commands[mach_o.LC_DYLD_INFO_ONLY], 8 + 4 * 8)
    root = b"\0\1" + EXPORTED + b"\0"
    tree = root + bytes([len(root) + 1]) + b"\2\0\0\0"  # no flags, the program's first byte, no branches
    tree += bytes(-len(tree) % 8)
    if len(tree) > size:
        raise CannotHide("exports nothing, not even where it begins")
    content[offset : offset + size] = tree + bytes(size - len(tree))
    replace_loader_info(content, commands, 9, (len(tree),))


def hide_symbols(content, commands):
    """Makes local what was exported. Local symbols come first in the table, so the others get new numbers."""
    offset, count, names, _ = struct.unpack_from("<4I", commands[mach_o.LC_SYMTAB], 8)
    old = commands[mach_o.LC_DYSYMTAB]
    first_defined, defined, first_undefined = struct.unpack_from("<3I", old, 16)
    end = offset + SYMBOL_BYTES * count
    entries = [bytes(content[at : at + SYMBOL_BYTES]) for at in range(offset, end, SYMBOL_BYTES)]
    ours = range(first_defined, first_defined + defined)
    kept = [index for index in ours if name_of(content, names, entries[index]) == EXPORTED]
    lost = [index for index in ours if index not in kept]
    for index in lost:
        entries[index] = made_local(entries[index])

    order = [*range(first_defined), *lost, *kept, *range(first_undefined, count)]
    content[offset:end] = b"".join(entries[index] for index in order)
    local = first_defined + len(lost)
    new = bytearray(old)
    struct.pack_into("<4I", new, 12, local, local, len(kept), local + len(kept))
    renumber_stubs(content, old, {index: place for place, index in enumerate(order)}, local)
    replace_command(content, old, new)


def name_of(content, names, entry):
    start = names + struct.unpack_from("<I", entry)[0]
    return bytes(content[start : content.index(b"\0", start)])


def made_local(entry):
    name, kind, section, description, value = struct.unpack("<IBBHQ", entry)
    return struct.pack("<IBBHQ", name, kind & ~mach_o.N_EXT | N_PEXT, section, description & ~N_WEAK_DEF, value)


def renumber_stubs(content, command, places, local):
    """Which symbol each stub and pointer stands for; for a local one, which may be stripped, just that it is."""
    offset, count = struct.unpack_from("<II", command, 56)
    for at in range(offset, offset + 4 * count, 4):
        index = struct.unpack_from("<I", content, at)[0]
        if not index & (INDIRECT_SYMBOL_LOCAL | INDIRECT_SYMBOL_ABSOLUTE):
            place = places[index]
            struct.pack_into("<I", content, at, INDIRECT_SYMBOL_LOCAL if place < local else place)
