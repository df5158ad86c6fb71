#pragma once
#include <string>
#include <string_view>

namespace karno::appcast {

// What a feed tells of a bundle. Texts that the property list does not have are empty.
struct BundleInfo {
  std::string name;           // CFBundleName
  std::string version;        // CFBundleVersion, which updaters compare; never empty
  std::string shortVersion;   // CFBundleShortVersionString
  std::string minimumSystem;  // LSMinimumSystemVersion
  std::string publicKey;      // SUPublicEDKey
  bool operator==(const BundleInfo&) const = default;
};

// Reads a property list. A Failure when it is none or has no version.
BundleInfo readInfoPlist(std::string_view bytes);

}  // namespace karno::appcast
