#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace karno::platform {

// An application bundle: a folder with Contents/Info.plist and an executable in Contents/MacOS. Immutable and
// safe from any thread. What a damaged or missing Info.plist would have told is absent.
class Bundle {
 public:
  virtual ~Bundle() = default;

  virtual std::string bundlePath() const = 0;

  // Absent when Info.plist names no executable or the file is not there.
  virtual std::optional<std::string> executablePath() const = 0;
  virtual std::optional<std::string> executableURL() const = 0;

  virtual std::optional<std::string> bundleIdentifier() const = 0;
  virtual std::optional<Value> objectForInfoDictionaryKey(std::string_view key) const = 0;

  // The path of Resources/<name>.<type>; with a directory, of Resources/<directory>/<name>.<type>. Without
  // one, the copy in the language folder that fits the user best counts as well. Absent when there is none.
  virtual std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                                     std::string_view directory) const = 0;

  // The text of that key in the strings table <table>.strings of the language folder that fits the user best;
  // the key itself when there is no table or the table has no such key.
  virtual std::string localisedString(std::string_view key, std::string_view table) const = 0;
};

class Bundles {
 public:
  virtual ~Bundles() = default;

  // The launcher's own bundle.
  virtual const Bundle& mainBundle() const = 0;

  // The bundle in that folder, or null when there is no folder. A folder without an Info.plist is a bundle
  // too.
  virtual std::shared_ptr<const Bundle> bundleAtPath(const std::string& path) const = 0;
};

}  // namespace karno::platform
