#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "installer/archive/failure.h"

struct archive;
struct archive_entry;

namespace karno::installer {

enum class EntryKind { File, Folder, SymbolicLink, HardLink, Other };

struct ArchiveEntry {
  std::string name;  // as it stands in the archive
  EntryKind kind = EntryKind::Other;
  std::string linkTarget;  // of a symbolic link
  bool isEncrypted = false;
  unsigned permissions = 0;       // the twelve lowest bits of a mode
  std::uint64_t sizeInBytes = 0;  // 0 where the archive does not say
};

// Bytes of a file and where in it they belong. What lies between pieces is zero.
struct Piece {
  std::uint64_t offset = 0;
  std::string_view bytes;  // good until the next call
};

// Reads zip and tar, the latter plain or packed by gzip, bzip2, xz or zstd, and nothing else. It never starts
// another program. For one thread.
class ArchiveReader {
 public:
  ArchiveReader();

  // Reads from the beginning of the file whatever its offset is. The descriptor stays the caller's.
  MaybeFailure open(int descriptor);

  // Nothing at the end of the archive.
  Outcome<std::optional<ArchiveEntry>> nextEntry();

  // Of the entry that came last; nothing at its end.
  Outcome<std::optional<Piece>> nextPiece();

  // Where in the archive the reader is.
  std::uint64_t bytesRead() const;

 private:
  struct Free {
    void operator()(struct archive* reader) const;
  };

  Failure failure() const;

  std::unique_ptr<struct archive, Free> archive_;
};

}  // namespace karno::installer
