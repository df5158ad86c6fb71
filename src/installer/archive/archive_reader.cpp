#include "installer/archive/archive_reader.h"

#include <archive.h>
#include <archive_entry.h>
#include <locale.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace karno::installer {
namespace {

constexpr std::size_t kReadBytes = 256U << 10U;

// libarchive turns names that are marked as UTF-8 into the encoding of the thread's locale, and fails where
// that has no such letters. Names without a mark come as they are.
class UTF8Locale {
 public:
  UTF8Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (locale_ != nullptr) before_ = ::uselocale(locale_);
  }
  UTF8Locale(const UTF8Locale&) = delete;
  UTF8Locale& operator=(const UTF8Locale&) = delete;
  ~UTF8Locale() {
    if (locale_ == nullptr) return;
    ::uselocale(before_);
    ::freelocale(locale_);
  }

 private:
  const locale_t locale_;
  locale_t before_ = nullptr;
};

using Enable = int (*)(struct archive*);
// A zip without its list of contents, which alone has permissions and links, counts as damaged.
constexpr std::array<Enable, 6> kEnabled = {
    archive_read_support_format_zip_seekable, archive_read_support_format_tar,
    archive_read_support_filter_gzip,         archive_read_support_filter_bzip2,
    archive_read_support_filter_xz,           archive_read_support_filter_zstd,
};

std::string text(const char* words) { return words == nullptr ? std::string() : std::string(words); }

EntryKind kindOf(struct archive_entry* entry) {
  if (archive_entry_hardlink(entry) != nullptr) return EntryKind::HardLink;
  switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
      return EntryKind::File;
    case AE_IFDIR:
      return EntryKind::Folder;
    case AE_IFLNK:
      return EntryKind::SymbolicLink;
    default:
      return EntryKind::Other;
  }
}

}  // namespace

void ArchiveReader::Free::operator()(struct archive* reader) const { archive_read_free(reader); }

ArchiveReader::ArchiveReader() : archive_(archive_read_new()) {}

MaybeFailure ArchiveReader::open(int descriptor) {
  if (!archive_) return systemFailure(ENOMEM);
  for (const Enable enable : kEnabled) {
    // A warning says that the library would start another program to unpack that kind.
    if (enable(archive_.get()) != ARCHIVE_OK) return failure();
  }
  if (::lseek(descriptor, 0, SEEK_SET) != 0) return systemFailure(errno);
  if (archive_read_open_fd(archive_.get(), descriptor, kReadBytes) != ARCHIVE_OK) return failure();
  return std::nullopt;
}

Outcome<std::optional<ArchiveEntry>> ArchiveReader::nextEntry() {
  const UTF8Locale locale;
  struct archive_entry* entry = nullptr;
  const int status = archive_read_next_header(archive_.get(), &entry);
  if (status == ARCHIVE_EOF) return std::optional<ArchiveEntry>();
  // A warning speaks of something that cannot be had as it is in the archive, such as a name.
  if (status != ARCHIVE_OK) return failure();

  return std::optional(ArchiveEntry{
      .name = text(archive_entry_pathname(entry)),
      .kind = kindOf(entry),
      .linkTarget = text(archive_entry_symlink(entry)),
      .isEncrypted = archive_entry_is_encrypted(entry) != 0,
      .permissions = static_cast<unsigned>(archive_entry_perm(entry)),
      .sizeInBytes = archive_entry_size_is_set(entry) != 0 && archive_entry_size(entry) > 0
                         ? static_cast<std::uint64_t>(archive_entry_size(entry))
                         : 0,
  });
}

Outcome<std::optional<Piece>> ArchiveReader::nextPiece() {
  const void* bytes = nullptr;
  std::size_t size = 0;
  la_int64_t offset = 0;
  const int status = archive_read_data_block(archive_.get(), &bytes, &size, &offset);
  if (status == ARCHIVE_EOF) return std::optional<Piece>();
  if (status != ARCHIVE_OK || offset < 0) return failure();
  return std::optional(Piece{static_cast<std::uint64_t>(offset), {static_cast<const char*>(bytes), size}});
}

std::uint64_t ArchiveReader::bytesRead() const {
  const la_int64_t bytes = archive_filter_bytes(archive_.get(), -1);
  return bytes < 0 ? 0 : static_cast<std::uint64_t>(bytes);
}

Failure ArchiveReader::failure() const {
  const char* words = archive_error_string(archive_.get());
  const std::string reason = words == nullptr ? "it is damaged" : oneLine(words);
  return {FailureCode::Unpacking, "The archive could not be unpacked: " + reason + "."};
}

}  // namespace karno::installer
