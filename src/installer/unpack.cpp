#include "installer/unpack.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "installer/archive/archive_file.h"
#include "installer/bundle_facts.h"
#include "installer/tree_removal.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {
namespace {

using platform::ScopedDescriptor;

Failure badFolder(const char* text) { return {FailureCode::Unpacking, text}; }

Outcome<ScopedDescriptor> openPrivateFolder(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  ScopedDescriptor folder(platform::retryOnInterrupt([&] { return ::open(path.c_str(), kFlags); }));
  if (!folder.isOpen()) return systemFailure(errno);
  struct stat status = {};
  if (::fstat(folder.get(), &status) != 0) return systemFailure(errno);
  if (status.st_uid != ::geteuid() || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
    return badFolder("The folder to unpack into is open to others.");
  if (!isEmptyFolder(folder.get())) return badFolder("The folder to unpack into is not empty.");
  return folder;
}

// Takes back what was unpacked, unless it is kept.
class Unpacked {
 public:
  explicit Unpacked(ScopedDescriptor folder) : folder_(std::move(folder)) {}
  Unpacked(const Unpacked&) = delete;
  Unpacked& operator=(const Unpacked&) = delete;
  ~Unpacked() {
    if (!isKept_) emptyFolder(folder_.get());
  }

  int folder() const { return folder_.get(); }
  void keep() { isKept_ = true; }

 private:
  const ScopedDescriptor folder_;
  bool isKept_ = false;
};

MaybeFailure checkBundle(const std::string& unpacked, const std::string& current) {
  const auto candidate = readBundleFacts(unpacked);
  if (!candidate) return candidate.error();
  const auto old = readBundleFacts(current);
  if (!old) return Failure{FailureCode::Validation, "Of the present bundle: " + old.error().text};
  return checkIsUpdate(candidate.value(), old.value());
}

}  // namespace

Outcome<std::string> unpackUpdate(const UnpackRequest& request, ExtractionObserver& observer) {
  const auto archive = ArchiveFile::open(request.archive);
  if (!archive) return archive.error();
  const ArchiveFile& file = archive.value();
  if (auto failure = file.check(request.lengthInBytes, request.signature, request.publicKey)) return *failure;

  auto folder = openPrivateFolder(request.into);
  if (!folder) return folder.error();
  Unpacked unpacked(std::move(folder.value()));
  const auto name = extractBundle(file.descriptor(), unpacked.folder(), request.limits, observer);
  if (!name) return name.error();
  const std::string path = request.into + "/" + name.value();
  if (auto failure = checkBundle(path, request.bundle)) return *failure;

  // Once for all files: after a power failure none of them may turn out empty.
  if (::syncfs(unpacked.folder()) != 0) return systemFailure(errno);
  if (!observer.goesOn(file.sizeInBytes()))
    return Failure{FailureCode::Unpacking, "The update was cancelled."};
  unpacked.keep();
  return path;
}

}  // namespace karno::installer
