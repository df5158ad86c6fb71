#pragma once

// How old the system is, by the number that AppKit carries, rounded down. The launcher no longer starts on
// such old systems; the branches for them are kept as they stand. Any thread.
namespace karno {

// Above 949, which is macOS 10.5.
bool isNewerThanMacOS10_5();

// At least 1187, which is macOS 10.8: the file manager can move things to the Trash.
bool canFileManagerTrash();

}  // namespace karno
