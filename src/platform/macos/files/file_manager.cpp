#include "platform/macos/files/file_manager.h"

#include <sys/stat.h>

#include "platform/cocoa/runtime/errors.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/posix/files/whole_copy.h"

namespace karno::platform {
namespace {

constexpr std::int64_t kUnknown = 512;  // NSFileWriteUnknownError

objc::Id defaultManager() { return objc::send(objc::classNamed("NSFileManager"), "defaultManager"); }

// `work` answers whether it succeeded, and else may set the NSError.
template <class Work>
std::optional<Error> errorUnlessDone(std::string_view doing, Work work) {
  const objc::AutoreleasePool pool;
  const auto done = objc::guarded(doing, [&work]() -> std::optional<Error> {
    objc::Id error = nullptr;
    if (work(&error)) return std::nullopt;
    return cocoa::errorOf(error, Error(std::string(kCocoaErrorDomain), kUnknown));
  });
  return done ? done.value() : done.error();
}

}  // namespace

std::optional<Error> FoundationFileManager::copyItem(const std::string& from, const std::string& to) {
  const auto copy = [&from](const std::string& place) {
    return errorUnlessDone("copy", [&](objc::Id* error) {
      return objc::send<bool>(defaultManager(), "copyItemAtPath:toPath:error:", objc::string(from),
                              objc::string(place), error);
    });
  };
  // The manager says best why it copies over nothing.
  struct stat status = {};
  return ::lstat(to.c_str(), &status) == 0 ? copy(to) : copyWhole(to, copy);
}

std::optional<Error> FoundationFileManager::trashItem(const std::string& path) {
  return errorUnlessDone("move to the Trash", [&](objc::Id* error) {
    const objc::Id url = objc::send(objc::classNamed("NSURL"), "fileURLWithPath:", objc::string(path));
    objc::Id* const resultingURL = nullptr;
    return objc::send<bool>(defaultManager(), "trashItemAtURL:resultingItemURL:error:", url, resultingURL,
                            error);
  });
}

}  // namespace karno::platform
