#include "util/utilities.h"

#include <fmt/format.h>

#include "log/karno_log.h"
#include "platform/platform.h"
#include "platform/property_lists/property_lists.h"
#include "util/string_utils.h"

namespace karno {
namespace {

// A file URL cannot name an empty path, nor one with a NUL byte in it.
bool canBeFileURL(std::string_view path) {
  return !path.empty() && path.find('\0') == std::string_view::npos;
}

}  // namespace

std::optional<std::string> Utilities::pathForEmbeddedAppWithName(std::string_view name) {
  const std::string bundlePath = platform::host().bundles.mainBundle().bundlePath();
  if (bundlePath.empty()) return std::nullopt;
  return u_stringByAppendingPathComponents(bundlePath, {"/Contents/Helpers", std::string(name)});
}

std::shared_ptr<const platform::Bundle> Utilities::bundleForEmbeddedKarnoAppWithName(std::string_view name) {
  const std::optional<std::string> path = pathForEmbeddedAppWithName(name);
  if (!path) {
    KarnoLog::manager().logWarn(fmt::format("Utilities[BUNDLE] Could not determine path for {}", name));
    return nullptr;
  }
  if (!canBeFileURL(*path)) {
    KarnoLog::manager().logWarn(
        fmt::format("Utilities[BUNDLE] Could not build url for {} (path:{})", name, *path));
    return nullptr;
  }
  std::shared_ptr<const platform::Bundle> bundle = platform::host().bundles.bundleAtPath(*path);
  if (!bundle) {
    KarnoLog::manager().logWarn(
        fmt::format("Utilities[BUNDLE] Could not find bundle for {} (path:{})", name, *path));
  }
  return bundle;
}

std::string Utilities::karnoCacheDirectory() {
  const std::vector<std::string> folders = platform::host().files.searchPath(platform::UserFolder::Caches);
  return u_stringByAppendingPathComponents(folders.back(), {"Karno/cache.noindex"});
}

Error Utilities::errorWithPOSIXCode(std::int32_t code, const std::optional<std::string>& message) {
  const std::string domain(platform::kPOSIXErrorDomain);
  if (!message) return Error(domain, code);
  return Error(domain, code, {{std::string(platform::kLocalizedDescriptionKey), *message}});
}

std::string Utilities::systemDownloadDirectory() {
  return platform::host().files.searchPath(platform::UserFolder::Downloads).front();
}

void Utilities::openFinderForPath(const std::optional<std::string>& path) {
  if (!path) return;
  platform::host().dispatch.mainQueue().async(
      [path = *path] { platform::host().workspace.selectFile(path, deletingLastPathComponent(path)); });
}

std::optional<platform::Value::Dictionary> Utilities::readPropertyListAtPath(const std::string& path) {
  const Result<std::string> bytes = platform::host().files.read(path);
  if (!bytes) {
    KarnoLog::manager().logWarn(fmt::format("PropertyList[READ] Failed read file {}", path));
    return std::nullopt;
  }
  const Result<platform::Value::Dictionary> dictionary = platform::unarchiveDictionary(bytes.value());
  if (!dictionary) {
    KarnoLog::manager().logWarn(
        fmt::format("PropertyList[READ] Failed to unarchive dictionary from {}. Reason: {}", path,
                    dictionary.error().localizedDescription()));
    return std::nullopt;
  }
  return dictionary.value();
}

std::optional<std::string> Utilities::pathForSymlink(const std::string& path) {
  const Result<std::string> destination = platform::host().files.destinationOfSymbolicLink(path);
  if (!destination) {
    KarnoLog::manager().logWarn(fmt::format("Utilities:: Failed to find link for '{}'", path));
    return std::nullopt;
  }
  return destination.value();
}

}  // namespace karno
