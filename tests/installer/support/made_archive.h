#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace karno::test {

enum class Kind { File, Folder, Link, HardLink, Device, Pipe };

// An entry of an archive, or something on the disk.
struct Item {
  std::string name;
  Kind kind = Kind::File;
  std::string content;  // of a file, or where a link leads
  unsigned mode = 0;    // 0: 0755 for a folder, else 0644
};

inline Item file(std::string name, std::string content, unsigned mode = 0) {
  return {std::move(name), Kind::File, std::move(content), mode};
}
inline Item folder(std::string name, unsigned mode = 0) { return {std::move(name), Kind::Folder, "", mode}; }
inline Item link(std::string name, std::string target) {
  return {std::move(name), Kind::Link, std::move(target), 0};
}

enum class Format { Zip, EncryptedZip, Tar, TarGzip, TarBzip2, TarXz, TarZstd, Cpio, SevenZip };

// Its name, for the names of tests.
void PrintTo(Format format, std::ostream* out);

// An archive with just these entries, in this order, whatever their names are. Throws std::runtime_error.
void writeArchive(const std::string& path, Format format, const std::vector<Item>& items);

}  // namespace karno::test
