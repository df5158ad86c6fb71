#include "installer/archive/extraction.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>

#include "installer/archive/archive_reader.h"
#include "installer/archive/serial_worker.h"
#include "installer/archive/unpacked_tree.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {
namespace {

Failure refused(const SafePath& path, std::string_view reason) {
  return {FailureCode::Unpacking,
          "The archive's entry \"" + oneLine(joined(path)) + "\" " + std::string(reason) + "."};
}

Failure notOneBundle() {
  return {FailureCode::Validation, "The archive does not hold exactly one application bundle."};
}

MaybeFailure done(int error) { return error == 0 ? std::nullopt : MaybeFailure(systemFailure(error)); }

// What the system says of a place, in the words of an archive where it is the archive's fault.
MaybeFailure placed(const SafePath& path, int error) {
  if (error == EEXIST) return refused(path, "comes twice");
  if (error == ENOTDIR || error == ELOOP) return refused(path, "lies in something that is no folder");
  return done(error);
}

bool isBundleName(std::string_view name) {
  constexpr std::string_view kSuffix = ".app";
  const bool hasControl =
      std::any_of(name.begin(), name.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; });
  return name.size() > kSuffix.size() && name.ends_with(kSuffix) && !hasControl;
}

class Extraction {
 public:
  Extraction(int folder, const UnpackLimits& limits, ExtractionObserver& observer)
      : tree_(folder), limits_(limits), observer_(observer) {}

  MaybeFailure open(int archive) { return reader_.open(archive); }

  Outcome<std::string> run() {
    const MaybeFailure failure = takeAll();
    // What the disk says is of an earlier entry.
    if (auto earlier = worker_.finish()) return *earlier;
    if (failure) return *failure;
    if (bundle_.empty()) return notOneBundle();
    return bundle_;
  }

 private:
  MaybeFailure takeAll() {
    while (true) {
      auto next = reader_.nextEntry();
      if (!next) return next.error();
      if (!next.value()) return std::nullopt;
      if (++entries_ > limits_.entriesMax)
        return Failure{FailureCode::Unpacking, "The archive holds too many entries."};
      if (auto stopped = askWhetherToGoOn()) return stopped;
      if (auto failure = take(*next.value())) return failure;
    }
  }

  MaybeFailure take(const ArchiveEntry& entry) {
    auto safe = safePath(entry.name, limits_);
    if (!safe) return safe.error();
    const SafePath& path = safe.value();
    if (entry.isEncrypted) return refused(path, "is encrypted");
    if (isPassedOver(path, entry.kind == EntryKind::File)) return passOver();
    if (auto failure = checkTop(path, entry.kind)) return failure;

    switch (entry.kind) {
      case EntryKind::Folder:
        return worker_.add([this, path, permissions = entry.permissions] {
          return placed(path, tree_.makeFolder(path, permissions));
        });
      case EntryKind::SymbolicLink:
        if (!staysInside(path, entry.linkTarget, limits_)) return refused(path, "leads out of the bundle");
        return worker_.add(
            [this, path, target = entry.linkTarget] { return placed(path, tree_.makeLink(path, target)); });
      case EntryKind::File:
        return writeFile(path, entry);
      case EntryKind::HardLink:
        return refused(path, "is a hard link");
      case EntryKind::Other:
        break;
    }
    return refused(path, "is neither file, folder nor symbolic link");
  }

  // Everything lies in one folder.
  MaybeFailure checkTop(const SafePath& path, EntryKind kind) {
    if (bundle_.empty() && isBundleName(path.front())) bundle_ = path.front();
    const bool isTop = path.size() == 1;
    if (path.front() != bundle_ || (isTop && kind != EntryKind::Folder)) return notOneBundle();
    return std::nullopt;
  }

  MaybeFailure writeFile(const SafePath& path, const ArchiveEntry& entry) {
    const auto file = std::make_shared<platform::ScopedDescriptor>();
    if (auto failure = worker_.add([this, path, permissions = entry.permissions, file] {
          return placed(path, tree_.makeFile(path, permissions, *file));
        }))
      return failure;
    const auto write = [&](const Piece& piece) {
      return worker_.add([file, bytes = std::string(piece.bytes), offset = piece.offset] {
        return done(writeAllAt(file->get(), bytes, offset));
      });
    };
    std::uint64_t written = 0;
    if (auto failure = eachPiece(write, written)) return failure;
    // The rest of a file with holes may be one.
    const std::uint64_t size = std::max(written, entry.sizeInBytes);
    if (auto failure = count(size)) return failure;
    return worker_.add([file, written, size] { return done(endFile(file->get(), written, size)); });
  }

  // It is unpacked all the same, so it counts.
  MaybeFailure passOver() {
    std::uint64_t size = 0;
    if (auto failure = eachPiece([](const Piece&) { return MaybeFailure(); }, size)) return failure;
    return count(size);
  }

  // `size`: where the last piece ends.
  template <class Use>
  MaybeFailure eachPiece(const Use& use, std::uint64_t& size) {
    while (true) {
      const auto next = reader_.nextPiece();
      if (!next) return next.error();
      if (!next.value()) return std::nullopt;
      const Piece& piece = *next.value();
      if (piece.offset > limits_.unpackedBytesMax || !fits(piece.offset + piece.bytes.size()))
        return tooLarge();
      size = std::max(size, piece.offset + piece.bytes.size());
      if (auto failure = use(piece)) return failure;
      if (auto stopped = askWhetherToGoOn()) return stopped;
    }
  }

  bool fits(std::uint64_t size) const { return size <= limits_.unpackedBytesMax - unpackedBytes_; }

  MaybeFailure count(std::uint64_t size) {
    if (!fits(size)) return tooLarge();
    unpackedBytes_ += size;
    return std::nullopt;
  }

  static Failure tooLarge() { return {FailureCode::Unpacking, "The archive is too large when unpacked."}; }

  MaybeFailure askWhetherToGoOn() {
    if (observer_.goesOn(reader_.bytesRead())) return std::nullopt;
    return Failure{FailureCode::Unpacking, "The update was cancelled."};
  }

  ArchiveReader reader_;
  UnpackedTree tree_;  // the worker's
  const UnpackLimits limits_;
  ExtractionObserver& observer_;
  std::string bundle_;
  std::size_t entries_ = 0;
  std::uint64_t unpackedBytes_ = 0;
  SerialWorker worker_;  // writes what was read while the next is read
};

}  // namespace

Outcome<std::string> extractBundle(int archive, int folder, const UnpackLimits& limits,
                                   ExtractionObserver& observer) {
  Extraction extraction(folder, limits, observer);
  if (auto failure = extraction.open(archive)) return *failure;
  return extraction.run();
}

}  // namespace karno::installer
