#include "fake_bundles.h"

namespace karno::test {
namespace {

const std::string kHelpers = "/Applications/Karno.app/Contents/Helpers/";

}  // namespace

std::optional<std::string> FakeBundle::executablePath() const {
  if (executable.empty()) return std::nullopt;
  return path_ + "/Contents/MacOS/" + executable;
}

std::optional<std::string> FakeBundle::executableURL() const {
  const auto path = executablePath();
  if (!path) return std::nullopt;
  return platform::fileURL(*path);
}

std::optional<std::string> FakeBundle::bundleIdentifier() const {
  const auto identifier = objectForInfoDictionaryKey("CFBundleIdentifier");
  if (!identifier || !identifier->isString()) return std::nullopt;
  return *identifier->get<std::string>();
}

std::optional<platform::Value> FakeBundle::objectForInfoDictionaryKey(std::string_view key) const {
  const auto found = info.find(key);
  if (found == info.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> FakeBundle::pathForResource(std::string_view name, std::string_view type,
                                                       std::string_view directory) const {
  std::string key = directory.empty() ? "" : std::string(directory) + "/";
  key.append(name).append(type.empty() ? "" : ".").append(type);
  const auto found = resources.find(key);
  if (found == resources.end()) return std::nullopt;
  return found->second;
}

std::string FakeBundle::localisedString(std::string_view key, std::string_view table) const {
  const auto found = texts.find(std::string(table) + "/" + std::string(key));
  return found == texts.end() ? std::string(key) : found->second;
}

FakeBundles::FakeBundles(const FakeFiles* files) : files_(files) {
  main_->executable = "Karno";
  main_->info = {{"CFBundleIdentifier", "it.vantul.KarnoWrapper"},
                 {"CFBundleName", "Karno"},
                 {"CFBundleShortVersionString", "3.2.1"}};
}

std::shared_ptr<const platform::Bundle> FakeBundles::bundleAtPath(const std::string& path) const {
  if (path.size() > 1 && path.ends_with('/')) return bundleAtPath(path.substr(0, path.size() - 1));
  if (path == main_->bundlePath()) return main_;
  const auto found = others_.find(path);
  if (found != others_.end()) return found->second;
  return files_ != nullptr && files_->isFolder(path) ? std::make_shared<FakeBundle>(path) : nullptr;
}

FakeBundle& FakeBundles::add(const std::string& path) {
  return *(others_[path] = std::make_shared<FakeBundle>(path));
}

FakeBundle& FakeBundles::addHelper(const std::string& name, const std::string& identifier,
                                   bool hasExecutable) {
  FakeBundle& bundle = add(kHelpers + name);
  bundle.info = {{"CFBundleIdentifier", identifier}};
  if (hasExecutable) bundle.executable = name.substr(0, name.rfind('.'));
  return bundle;
}

void FakeBundles::removeHelper(const std::string& name) { others_.erase(kHelpers + name); }

}  // namespace karno::test
