#pragma once
#include <string>
#include <string_view>

#include "installer/archive/failure.h"

namespace karno::installer {

// What decides whether one bundle may take the place of another.
struct BundleFacts {
  std::string identifier;
  std::string version;     // CFBundleVersion
  std::string executable;  // a name in Contents/MacOS

  bool operator==(const BundleFacts&) const = default;
};

// From the bytes of a property list in which all three must be strings.
Outcome<BundleFacts> parseBundleFacts(std::string_view infoPlist);

// Also sees that the executable is a file that may be executed.
Outcome<BundleFacts> readBundleFacts(const std::string& bundlePath);

// Nothing when a bundle with the facts `candidate` is an update of one with the facts `current`: of the same
// identifier and newer.
MaybeFailure checkIsUpdate(const BundleFacts& candidate, const BundleFacts& current);

}  // namespace karno::installer
