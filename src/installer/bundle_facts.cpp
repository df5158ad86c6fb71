#include "installer/bundle_facts.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/files/whole_file.h"
#include "platform/property_lists/property_lists.h"
#include "platform/version_order.h"

namespace karno::installer {
namespace {

Failure invalid(std::string text) { return {FailureCode::Validation, std::move(text)}; }

// Empty when there is none.
std::string stringEntry(const platform::Value::Dictionary& information, std::string_view key) {
  const auto* const text = platform::entryOf<std::string>(information, key);
  return text == nullptr ? std::string() : *text;
}

bool isPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

bool isExecutableFile(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

Outcome<BundleFacts> parseBundleFacts(std::string_view infoPlist) {
  const auto information = platform::parseDictionary(infoPlist);
  if (!information) return invalid("The bundle's Info.plist is not a property list with a dictionary.");
  BundleFacts facts{.identifier = stringEntry(information.value(), "CFBundleIdentifier"),
                    .version = stringEntry(information.value(), "CFBundleVersion"),
                    .executable = stringEntry(information.value(), "CFBundleExecutable")};
  if (facts.identifier.empty()) return invalid("The bundle has no identifier.");
  if (facts.version.empty()) return invalid("The bundle has no version.");
  if (!isPlainName(facts.executable)) return invalid("The bundle names no executable.");
  return facts;
}

Outcome<BundleFacts> readBundleFacts(const std::string& bundlePath) {
  const auto file = platform::readWholeFile(bundlePath + "/Contents/Info.plist");
  if (!file) return invalid("The bundle's Info.plist cannot be read.");
  Outcome<BundleFacts> facts = parseBundleFacts(file.value().bytes);
  if (facts && !isExecutableFile(bundlePath + "/Contents/MacOS/" + facts.value().executable))
    return invalid("The bundle's executable is missing or cannot be executed.");
  return facts;
}

MaybeFailure checkIsUpdate(const BundleFacts& candidate, const BundleFacts& current) {
  if (candidate.identifier != current.identifier) {
    return invalid(fmt::format("The update is of \"{}\", not of \"{}\".", oneLine(candidate.identifier),
                               oneLine(current.identifier)));
  }
  if (platform::compareVersions(candidate.version, current.version) <= 0) {
    return Failure{FailureCode::NotNewer,
                   fmt::format("The update has version {}, which is not newer than {}.",
                               oneLine(candidate.version), oneLine(current.version))};
  }
  return std::nullopt;
}

}  // namespace karno::installer
