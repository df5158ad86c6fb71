#include "platform/macos/files/search_paths.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

extern "C" karno::platform::objc::Id NSSearchPathForDirectoriesInDomains(
    unsigned long directory, unsigned long domains, karno::platform::objc::Boolean expandTilde);

namespace karno::platform {
namespace {

constexpr objc::Boolean kExpandTildes = 1;

}  // namespace

std::vector<std::string> searchPathForDirectories(unsigned long directory, unsigned long domains) {
  const cocoa::ThreadPoolScope scope;
  std::vector<std::string> folders;
  objc::guardedAndLogged("search path", [&] {
    const objc::Id paths = NSSearchPathForDirectoriesInDomains(directory, domains, kExpandTildes);
    const auto count = objc::send<objc::UInteger>(paths, "count");
    for (objc::UInteger index = 0; index < count; ++index) {
      folders.push_back(objc::text(objc::send(paths, "objectAtIndex:", index)));
    }
  });
  return folders;
}

}  // namespace karno::platform
