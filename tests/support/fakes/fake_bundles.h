#pragma once
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "fake_files.h"
#include "platform/bundles.h"
#include "platform/linux/text/file_url.h"

namespace karno::test {

// A bundle as a test describes it.
class FakeBundle final : public platform::Bundle {
 public:
  explicit FakeBundle(std::string path) : path_(std::move(path)) {}

  std::string bundlePath() const override { return path_; }
  std::optional<std::string> executablePath() const override;
  std::optional<std::string> executableURL() const override;
  std::optional<std::string> bundleIdentifier() const override;
  std::optional<platform::Value> objectForInfoDictionaryKey(std::string_view key) const override;
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override;
  std::string localisedString(std::string_view key, std::string_view table) const override;

  void setPath(std::string path) { path_ = std::move(path); }

  platform::Value::Dictionary info;
  std::map<std::string, std::string> texts;      // by table and key: "MoveApplication/Do Not Move"
  std::string executable;                        // a name in Contents/MacOS; empty: there is none
  std::map<std::string, std::string> resources;  // "Strings.json" or "Base.lproj/Strings.json" to a full path

 private:
  std::string path_;
};

// The launcher's bundle at /Applications/Karno.app, those that a test adds, and any folder of the fake disk.
class FakeBundles final : public platform::Bundles {
 public:
  explicit FakeBundles(const FakeFiles* files = nullptr);

  const platform::Bundle& mainBundle() const override { return *main_; }
  std::shared_ptr<const platform::Bundle> bundleAtPath(const std::string& path) const override;

  FakeBundle& main() { return *main_; }

  FakeBundle& add(const std::string& path);

  // Adds a bundle in Contents/Helpers of the launcher's.
  FakeBundle& addHelper(const std::string& name, const std::string& identifier, bool hasExecutable = true);
  void removeHelper(const std::string& name);

 private:
  const FakeFiles* files_;  // null where there is no disk
  std::shared_ptr<FakeBundle> main_ = std::make_shared<FakeBundle>("/Applications/Karno.app");
  std::map<std::string, std::shared_ptr<FakeBundle>> others_;
};

}  // namespace karno::test
