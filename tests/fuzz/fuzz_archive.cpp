#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

#include "fuzz_target.h"
#include "installer/archive/extraction.h"
#include "installer/tree_removal.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::fuzz {
namespace {

namespace fs = std::filesystem;
using platform::ScopedDescriptor;

constexpr installer::UnpackLimits kLimits{
    .entriesMax = 200, .unpackedBytesMax = 1U << 20U, .nameBytesMax = 300, .depthMax = 8};

class Patient final : public installer::ExtractionObserver {
 public:
  bool goesOn(std::uint64_t) override { return true; }
};

// A folder that holds nothing but the folder that is unpacked into; both are made once and go with the
// process.
class Place {
 public:
  Place() {
    std::string pattern = (fs::temp_directory_path() / "karno-fuzz-XXXXXX").string();
    mustHold(::mkdtemp(pattern.data()) != nullptr, "a temporary folder can be made");
    around_ = pattern;
    mustHold(fs::create_directory(into()), "a folder to unpack into can be made");
    folder_.reset(::open(into().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    std::error_code ignored;
    fs::remove_all(around_, ignored);
  }

  int folder() const { return folder_.get(); }
  fs::path into() const { return around_ / "into"; }

  void checkNothingIsBeside() const {
    const auto count = std::distance(fs::directory_iterator(around_), fs::directory_iterator());
    mustHold(count == 1, "nothing is unpacked beside the folder");
  }

 private:
  fs::path around_;
  ScopedDescriptor folder_;
};

void checkEntry(const fs::path& path, const fs::path& root) {
  struct stat status = {};
  mustHold(::lstat(path.c_str(), &status) == 0, "an entry can be looked at");
  const auto type = status.st_mode & S_IFMT;
  mustHold(type == S_IFREG || type == S_IFDIR || type == S_IFLNK, "no other kinds are made");
  if (type != S_IFLNK) {
    mustHold((status.st_mode & 07022) == 0, "only the owner may write, without special bits");
    mustHold(type == S_IFDIR || status.st_nlink == 1, "no hard links are made");
    return;
  }
  // A circle of links leads nowhere at all.
  std::error_code error;
  const std::string leadsTo = fs::weakly_canonical(path, error).string();
  mustHold(error || leadsTo.starts_with(root.string() + "/"), "links stay inside");
}

void checkEntries(const fs::path& into) {
  const fs::path root = fs::canonical(into);
  std::uintmax_t bytes = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    checkEntry(entry.path(), root);
    if (!entry.is_symlink() && entry.is_regular_file()) bytes += entry.file_size();
  }
  mustHold(bytes <= kLimits.unpackedBytesMax, "the limit of unpacked bytes is kept");
}

ScopedDescriptor fileWith(std::string_view bytes) {
  ScopedDescriptor file(::memfd_create("archive", MFD_CLOEXEC));
  mustHold(file.isOpen() && platform::writeAll(file.get(), bytes) == 0, "the archive can be written");
  return file;
}

void unpack(std::string_view bytes) {
  static const Place place;
  const ScopedDescriptor archive = fileWith(bytes);
  Patient observer;

  const auto bundle = installer::extractBundle(archive.get(), place.folder(), kLimits, observer);

  place.checkNothingIsBeside();
  checkEntries(place.into());
  if (bundle) mustHold(fs::is_directory(place.into() / bundle.value()), "a bundle that is named is there");
  mustHold(installer::emptyFolder(place.folder()) == 0, "all of it can be removed");
  mustHold(fs::is_empty(place.into()), "all of it is removed");
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::unpack({reinterpret_cast<const char*>(data), size});
  return 0;
}
