#include "platform/cocoa/running_applications.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/cocoa/property_lists.h"
#include "platform/linux/property_list_file.h"
#include "platform/posix/running_children.h"
#include "platform/posix/whole_file.h"

namespace karno::platform::cocoa {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDeletedSuffix = " (deleted)";  // as the kernel writes it, see proc(5)

std::optional<std::int32_t> processIdentifierOf(const fs::path& entry) {
  const std::string name = entry.filename().string();
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return number;
}

bool belongsToThisUser(const fs::path& process) {
  struct stat status = {};
  return ::stat(process.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

std::string_view machineIn(std::string_view environment) {
  constexpr std::string_view kVariable = "KARNO_MACHINE_ROOT=";
  while (!environment.empty()) {
    const std::string_view entry = environment.substr(0, environment.find('\0'));
    if (entry.starts_with(kVariable)) return entry.substr(kVariable.size());
    environment.remove_prefix(std::min(entry.size() + 1, environment.size()));
  }
  return {};
}

// Machines side by side on one computer know nothing of each other. What is started in one inherits the
// variable that names its root.
bool belongsToThisMachine(const fs::path& process) {
  const Result<WholeFile> environment = readWholeFile(process / "environ");
  const char* const own = std::getenv("KARNO_MACHINE_ROOT");
  return environment && machineIn(environment.value().bytes) == (own == nullptr ? "" : own);
}

// Absent for kernel threads, for zombies and for a process that has gone meanwhile, which have no link to
// follow, and for a file that was removed since.
std::optional<std::string> executableOf(const fs::path& process) {
  std::error_code error;
  std::string path = fs::read_symlink(process / "exe", error).string();
  if (error) return std::nullopt;
  if (path.ends_with(kDeletedSuffix) && !fs::exists(path, error)) return std::nullopt;
  return path;
}

// The bundle of an executable in X.app/Contents/MacOS.
std::optional<std::string> bundleOf(const std::string& executable) {
  const fs::path programs = fs::path(executable).parent_path();
  const fs::path contents = programs.parent_path();
  const fs::path bundle = contents.parent_path();
  if (programs.filename() != "MacOS" || contents.filename() != "Contents" || bundle.extension() != ".app") {
    return std::nullopt;
  }
  return bundle.string();
}

// The identifiers of bundles, each Info.plist read once.
class Identifiers {
 public:
  const std::optional<std::string>& of(const std::string& bundle) {
    const auto known = known_.find(bundle);
    if (known != known_.end()) return known->second;
    return known_.emplace(bundle, read(bundle)).first->second;
  }

 private:
  std::optional<std::string> read(const std::string& bundle) const {
    const Result<Value::Dictionary> info = readDictionary(propertyLists_, bundle + "/Contents/Info.plist");
    if (!info) return std::nullopt;
    const auto entry = info.value().find("CFBundleIdentifier");
    if (entry == info.value().end()) return std::nullopt;
    const auto* identifier = entry->second.get<std::string>();
    return identifier == nullptr ? std::nullopt : std::optional(*identifier);
  }

  const CocoaPropertyLists propertyLists_;
  std::map<std::string, std::optional<std::string>> known_;
};

bool isOfBundle(const std::string& executable, const std::string& bundleIdentifier,
                Identifiers& identifiers) {
  const std::optional<std::string> bundle = bundleOf(executable);
  return bundle && identifiers.of(*bundle) == bundleIdentifier;
}

}  // namespace

std::vector<RunningApplication> runningApplicationsWithIdentifier(const std::string& bundleIdentifier) {
  std::vector<RunningApplication> found;
  const auto add = [&](std::int32_t process) {
    found.push_back({.processIdentifier = process, .bundleIdentifier = bundleIdentifier});
  };
  Identifiers identifiers;
  const std::map<std::int32_t, std::string> children = RunningChildren::instance().all();
  for (const auto& [process, executable] : children) {
    if (isOfBundle(executable, bundleIdentifier, identifiers)) add(process);
  }

  std::error_code error;
  for (fs::directory_iterator entry("/proc", error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::optional<std::int32_t> process = processIdentifierOf(entry->path());
    if (!process || children.contains(*process) || !belongsToThisUser(entry->path())) continue;
    const std::optional<std::string> executable = executableOf(entry->path());
    if (!executable || !isOfBundle(*executable, bundleIdentifier, identifiers)) continue;
    if (belongsToThisMachine(entry->path())) add(*process);
  }
  return found;
}

}  // namespace karno::platform::cocoa
