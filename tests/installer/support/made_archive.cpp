#include "support/made_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <memory>
#include <ostream>
#include <stdexcept>

namespace karno::test {
namespace {

struct FreeArchive {
  void operator()(struct archive* writer) const { archive_write_free(writer); }
};
struct FreeEntry {
  void operator()(struct archive_entry* entry) const { archive_entry_free(entry); }
};

void check(struct archive* writer, int status) {
  if (status >= ARCHIVE_WARN) return;
  const char* words = archive_error_string(writer);
  throw std::runtime_error(words == nullptr ? "the archive cannot be written" : words);
}

void setFormat(struct archive* writer, Format format) {
  switch (format) {
    case Format::Zip:
      return check(writer, archive_write_set_format_zip(writer));
    case Format::EncryptedZip:
      check(writer, archive_write_set_format_zip(writer));
      check(writer, archive_write_set_options(writer, "zip:encryption=traditional"));
      return check(writer, archive_write_set_passphrase(writer, "secret"));
    case Format::Cpio:
      return check(writer, archive_write_set_format_cpio(writer));
    case Format::SevenZip:
      return check(writer, archive_write_set_format_7zip(writer));
    default:
      return check(writer, archive_write_set_format_pax_restricted(writer));
  }
}

void addFilter(struct archive* writer, Format format) {
  if (format == Format::TarGzip) check(writer, archive_write_add_filter_gzip(writer));
  if (format == Format::TarBzip2) check(writer, archive_write_add_filter_bzip2(writer));
  if (format == Format::TarXz) check(writer, archive_write_add_filter_xz(writer));
  if (format == Format::TarZstd) check(writer, archive_write_add_filter_zstd(writer));
}

__LA_MODE_T fileTypeOf(Kind kind) {
  switch (kind) {
    case Kind::Folder:
      return AE_IFDIR;
    case Kind::Link:
      return AE_IFLNK;
    case Kind::Device:
      return AE_IFCHR;
    case Kind::Pipe:
      return AE_IFIFO;
    default:
      return AE_IFREG;
  }
}

void write(struct archive* writer, const Item& item) {
  const std::unique_ptr<struct archive_entry, FreeEntry> entry(archive_entry_new());
  archive_entry_copy_pathname(entry.get(), item.name.c_str());
  archive_entry_set_filetype(entry.get(), fileTypeOf(item.kind));
  archive_entry_set_perm(entry.get(), item.mode != 0 ? item.mode : item.kind == Kind::Folder ? 0755 : 0644);
  if (item.kind == Kind::Link) archive_entry_copy_symlink(entry.get(), item.content.c_str());
  if (item.kind == Kind::HardLink) archive_entry_copy_hardlink(entry.get(), item.content.c_str());
  const bool hasBody = item.kind == Kind::File;
  archive_entry_set_size(entry.get(), hasBody ? static_cast<la_int64_t>(item.content.size()) : 0);
  check(writer, archive_write_header(writer, entry.get()));
  if (hasBody && archive_write_data(writer, item.content.data(), item.content.size()) < 0)
    check(writer, ARCHIVE_FATAL);
}

}  // namespace

void PrintTo(Format format, std::ostream* out) {
  constexpr std::array kNames{"Zip",   "EncryptedZip", "Tar",  "TarGzip", "TarBzip2",
                              "TarXz", "TarZstd",      "Cpio", "SevenZip"};
  *out << kNames.at(static_cast<std::size_t>(format));
}

void writeArchive(const std::string& path, Format format, const std::vector<Item>& items) {
  const std::unique_ptr<struct archive, FreeArchive> writer(archive_write_new());
  setFormat(writer.get(), format);
  addFilter(writer.get(), format);
  check(writer.get(), archive_write_open_filename(writer.get(), path.c_str()));
  for (const Item& item : items) write(writer.get(), item);
  check(writer.get(), archive_write_close(writer.get()));
}

}  // namespace karno::test
