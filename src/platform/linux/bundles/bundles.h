#pragma once
#include "platform/bundles.h"

namespace karno::platform {

// A bundle in the Mac's layout. Info.plist is read once, when it is made.
class LinuxBundle final : public Bundle {
 public:
  // `path` is absolute.
  explicit LinuxBundle(std::string path);

  std::string bundlePath() const override;
  std::optional<std::string> executablePath() const override;
  std::optional<std::string> executableURL() const override;
  std::optional<std::string> bundleIdentifier() const override;
  std::optional<Value> objectForInfoDictionaryKey(std::string_view key) const override;
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override;
  std::string localisedString(std::string_view key, std::string_view table) const override;

 private:
  std::optional<std::string> infoString(std::string_view key) const;

  const std::string path_;
  const Value::Dictionary info_;
};

// The main bundle is the folder above Contents/MacOS that the program lies in; a program outside a bundle has
// its own folder for one.
class LinuxBundles final : public Bundles {
 public:
  LinuxBundles();

  const Bundle& mainBundle() const override { return mainBundle_; }
  std::shared_ptr<const Bundle> bundleAtPath(const std::string& path) const override;

 private:
  const LinuxBundle mainBundle_;
};

}  // namespace karno::platform
