#include "platform/cocoa/running_applications.h"

#include <filesystem>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/linux/files/property_list_file.h"
#include "platform/linux/processes/process_list.h"
#include "platform/posix/processes/running_children.h"

namespace karno::platform::cocoa {
namespace {

namespace fs = std::filesystem;

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
  static std::optional<std::string> read(const std::string& bundle) {
    const Result<Value::Dictionary> info = readDictionary(bundle + "/Contents/Info.plist");
    if (!info) return std::nullopt;
    const auto* identifier = entryOf<std::string>(info.value(), "CFBundleIdentifier");
    return identifier == nullptr ? std::nullopt : std::optional(*identifier);
  }

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

  std::error_code ignored;
  for (const RunningProcess& process : LinuxProcessList().runningProcesses()) {
    if (children.contains(process.processIdentifier)) continue;
    if (!isOfBundle(process.executablePath, bundleIdentifier, identifiers)) continue;
    if (fs::exists(process.executablePath, ignored)) add(process.processIdentifier);
  }
  return found;
}

std::vector<std::string> bundlesOfRunningApplications() {
  std::vector<std::string> bundles;
  for (const RunningProcess& process : LinuxProcessList().runningProcesses()) {
    const std::optional<std::string> bundle = bundleOf(process.executablePath);
    std::error_code ignored;
    if (bundle && fs::exists(process.executablePath, ignored)) bundles.push_back(*bundle);
  }
  return bundles;
}

}  // namespace karno::platform::cocoa
