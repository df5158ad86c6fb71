#include "karno-appcast/archives/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>

#include "karno-appcast/failure.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::appcast {

MappedFile::MappedFile(const std::string& path) {
  const platform::ScopedDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) throw systemFailure("cannot read " + path, errno);
  if (!S_ISREG(status.st_mode)) throw Failure(path + " is no file");
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > kArchiveBytesMax) throw Failure(path + " is larger than 4 GiB");
  modifiedAt_ = status.st_mtime;
  if (size == 0) return;  // nothing that could be mapped
  void* const start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
  if (start == MAP_FAILED) throw systemFailure("cannot read " + path, errno);
  bytes_ = Bytes(static_cast<const unsigned char*>(start), size);
}

MappedFile::~MappedFile() {
  if (!bytes_.empty()) ::munmap(const_cast<unsigned char*>(bytes_.data()), bytes_.size());
}

}  // namespace karno::appcast
