#include "platform/linux/bundles/bundles.h"

#include <sys/stat.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "platform/linux/bundles/language_folders.h"
#include "platform/linux/bundles/preferred_languages.h"
#include "platform/linux/files/property_list_file.h"
#include "platform/linux/text/file_url.h"
#include "platform/posix/files/program_bundle.h"
#include "platform/posix/processes/process_information.h"

namespace karno::platform {
namespace {

std::string withoutSlashesAtEnd(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::optional<mode_t> modeOf(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status.st_mode;
}

bool isFolder(const std::string& path) {
  const std::optional<mode_t> mode = modeOf(path);
  return mode && S_ISDIR(*mode);
}

bool isRegularFile(const std::string& path) {
  const std::optional<mode_t> mode = modeOf(path);
  return mode && S_ISREG(*mode);
}

// The names of the folders in it; none when it cannot be read.
std::vector<std::string> foldersIn(const std::string& path) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_directory(ignored)) names.push_back(entry->path().filename().string());
  }
  return names;
}

Value::Dictionary infoDictionary(const std::string& bundle) {
  Result<Value::Dictionary> info = readDictionary(bundle + "/Contents/Info.plist");
  return info ? std::move(info.value()) : Value::Dictionary();
}

std::string mainBundlePath() {
  const std::string program = programPath();
  return bundleOfProgram(program).value_or(std::filesystem::path(program).parent_path().string());
}

}  // namespace

LinuxBundle::LinuxBundle(std::string path)
    : path_(withoutSlashesAtEnd(std::move(path))), info_(infoDictionary(path_)) {}

std::string LinuxBundle::bundlePath() const { return path_; }

std::optional<std::string> LinuxBundle::executablePath() const {
  const std::optional<std::string> name = infoString("CFBundleExecutable");
  // A name with a "/" could lead out of the bundle.
  if (!name || name->empty() || name->find('/') != std::string::npos) return std::nullopt;

  std::string path = path_ + "/Contents/MacOS/" + *name;
  if (!isRegularFile(path)) return std::nullopt;
  return path;
}

std::optional<std::string> LinuxBundle::executableURL() const {
  const std::optional<std::string> path = executablePath();
  if (!path) return std::nullopt;
  return fileURL(*path);
}

std::optional<std::string> LinuxBundle::bundleIdentifier() const { return infoString("CFBundleIdentifier"); }

std::optional<Value> LinuxBundle::objectForInfoDictionaryKey(std::string_view key) const {
  const auto entry = info_.find(key);
  if (entry == info_.end()) return std::nullopt;
  return entry->second;
}

std::optional<std::string> LinuxBundle::pathForResource(std::string_view name, std::string_view type,
                                                        std::string_view directory) const {
  const std::string file = std::string(name) + (type.empty() ? "" : "." + std::string(type));
  const std::string resources = path_ + "/Contents/Resources/";

  std::vector<std::string> candidates;
  if (directory.empty()) {
    candidates.push_back(resources + file);
    // Only a folder that is there can be named, so a language cannot lead out of the resources.
    for (const std::string& folder : languageFolders(foldersIn(resources), preferredLanguages())) {
      candidates.push_back(resources + folder + "/" + file);
    }
  } else {
    candidates.push_back(resources + std::string(directory) + "/" + file);
  }
  for (const std::string& candidate : candidates) {
    if (modeOf(candidate)) return candidate;
  }
  return std::nullopt;
}

// Read anew each time: the few texts that come from such tables are asked for once in a launch.
std::string LinuxBundle::localisedString(std::string_view key, std::string_view table) const {
  const std::optional<std::string> path = pathForResource(table, "strings", "");
  if (!path) return std::string(key);
  const Result<Value::Dictionary> texts = readDictionary(*path);
  if (!texts) return std::string(key);
  const auto* text = entryOf<std::string>(texts.value(), key);
  return text == nullptr ? std::string(key) : *text;
}

std::optional<std::string> LinuxBundle::infoString(std::string_view key) const {
  const auto* text = entryOf<std::string>(info_, key);
  return text == nullptr ? std::nullopt : std::optional(*text);
}

LinuxBundles::LinuxBundles() : mainBundle_(mainBundlePath()) {}

std::shared_ptr<const Bundle> LinuxBundles::bundleAtPath(const std::string& path) const {
  if (!isFolder(path)) return nullptr;
  return std::make_shared<LinuxBundle>(path);
}

}  // namespace karno::platform
