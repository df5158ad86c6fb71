#include "karno-appcast/bundle_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <memory>
#include <optional>

#include "karno-appcast/failure.h"

namespace karno::appcast {
namespace {

constexpr std::array<std::string_view, 6> kEndings{".zip",     ".tar.gz", ".tar.xz",
                                                   ".tar.bz2", ".tar",    ".tar.zst"};
constexpr std::string_view kInfoInBundle = ".app/Contents/Info.plist";

struct Close {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, Close>;

Failure damaged(const Reader& reader) {
  const char* const reason = archive_error_string(reader.get());
  return Failure(std::string("the archive cannot be read: ") + (reason == nullptr ? "no reason" : reason));
}

// Only what releases come in: some of the other filters start programs. A zip without its list of contents,
// as one that was cut off, counts as damaged, since launchers do not unpack it.
Reader open(Bytes bytes) {
  Reader reader(archive_read_new());
  archive_read_support_format_tar(reader.get());
  archive_read_support_format_zip_seekable(reader.get());
  archive_read_support_filter_gzip(reader.get());
  archive_read_support_filter_xz(reader.get());
  archive_read_support_filter_bzip2(reader.get());
  archive_read_support_filter_zstd(reader.get());
  if (archive_read_open_memory(reader.get(), bytes.data(), bytes.size()) != ARCHIVE_OK) throw damaged(reader);
  return reader;
}

// A name that cannot be converted is taken as its bytes.
std::string pathOf(archive_entry* entry) {
  const char* path = archive_entry_pathname_utf8(entry);
  if (path == nullptr) path = archive_entry_pathname(entry);
  std::string text = path == nullptr ? "" : path;
  if (text.starts_with("./")) text.erase(0, 2);
  return text;
}

// The bundle's name when this is the Info.plist of a bundle at the top of the archive.
std::optional<std::string> bundleOfInfo(const std::string& path) {
  if (!path.ends_with(kInfoInBundle)) return std::nullopt;
  std::string name = path.substr(0, path.size() - kInfoInBundle.size());
  if (name.empty() || name.find('/') != std::string::npos) return std::nullopt;
  return name;
}

std::string contentOf(const Reader& reader) {
  std::string content(kInfoBytesMax + 1, '\0');
  std::size_t used = 0;
  while (used < content.size()) {
    const la_ssize_t count = archive_read_data(reader.get(), content.data() + used, content.size() - used);
    if (count < 0) throw damaged(reader);
    if (count == 0) break;
    used += static_cast<std::size_t>(count);
  }
  if (used > kInfoBytesMax) throw Failure("its Info.plist is larger than 1 MiB");
  content.resize(used);
  return content;
}

}  // namespace

std::string_view nameWithoutArchiveEnding(std::string_view fileName) {
  for (const std::string_view ending : kEndings) {
    if (fileName.ends_with(ending)) return fileName.substr(0, fileName.size() - ending.size());
  }
  return {};
}

ArchivedBundle bundleInArchive(Bytes archive) {
  const Reader reader = open(archive);
  std::optional<ArchivedBundle> found;
  // To the end, also where the bundle is found before: what is behind it may be damaged. The end itself takes
  // one look more than there may be entries.
  for (int count = 0; count <= kArchiveEntriesMax; ++count) {
    archive_entry* entry = nullptr;
    const int outcome = archive_read_next_header(reader.get(), &entry);
    if (outcome == ARCHIVE_EOF && !found) throw Failure("there is no application at the top of the archive");
    if (outcome == ARCHIVE_EOF) return std::move(*found);
    if (outcome < ARCHIVE_WARN) throw damaged(reader);
    auto name = bundleOfInfo(pathOf(entry));
    if (!name) continue;
    if (found) throw Failure("there is more than one application at the top of the archive");
    found = {std::move(*name), contentOf(reader)};
  }
  throw Failure("the archive has more than 100000 entries");
}

}  // namespace karno::appcast
