#include "platform/macos/files/standard_folders.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

extern "C" karno::platform::objc::Id NSSearchPathForDirectoriesInDomains(
    unsigned long directory, unsigned long domains, karno::platform::objc::Boolean expandTilde);

namespace karno::platform {
namespace {

constexpr unsigned long kApplications = 1;  // NSApplicationDirectory
constexpr unsigned long kDownloads = 15;    // NSDownloadsDirectory
constexpr unsigned long kLocalDomain = 2;
constexpr unsigned long kAllDomains = 0x0ffff;
constexpr objc::Boolean kExpandTildes = 1;

std::vector<std::string> searchPath(unsigned long directory, unsigned long domains) {
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

}  // namespace

std::vector<std::string> FoundationStandardFolders::inAllDomains(StandardFolder folder) const {
  return searchPath(folder == StandardFolder::Downloads ? kDownloads : kApplications, kAllDomains);
}

std::string FoundationStandardFolders::localApplications() const {
  const std::vector<std::string> folders = searchPath(kApplications, kLocalDomain);
  return folders.empty() ? "/Applications" : folders.front();
}

}  // namespace karno::platform
