#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/bundles.h"
#include "platform/value.h"
#include "util/error.h"

namespace karno {

// File and bundle chores. Every failure is logged at WARN level where it is found and answered with nothing.
// Safe from any thread.
class Utilities {
 public:
  // Where the embedded application of that name lies in the launcher's own bundle; not checked for existence.
  // Absent when the launcher's own path is not known.
  static std::optional<std::string> pathForEmbeddedAppWithName(std::string_view name);

  // Null when there is no such bundle.
  static std::shared_ptr<const platform::Bundle> bundleForEmbeddedKarnoAppWithName(std::string_view name);

  // The user's cache folder of the launcher. Not created here; ".noindex" keeps the search indexer out.
  static std::string karnoCacheDirectory();

  // An error in the POSIX domain. Without a message it has no user information at all.
  static Error errorWithPOSIXCode(std::int32_t code, const std::optional<std::string>& message);

  static std::string systemDownloadDirectory();

  // Shows the file in the file viewer, later, on the main thread. Nothing without a path.
  static void openFinderForPath(const std::optional<std::string>& path);

  // Reads a keyed archive whose root is a dictionary. A plain property list fails, in spite of the name.
  static std::optional<platform::Value::Dictionary> readPropertyListAtPath(const std::string& path);

  // What the symbolic link holds, not resolved further and possibly relative.
  static std::optional<std::string> pathForSymlink(const std::string& path);
};

}  // namespace karno
