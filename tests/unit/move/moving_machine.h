#pragma once
#include <optional>
#include <string>
#include <vector>

#include "fake_platform.h"
#include "platform/property_lists/property_lists.h"
#include "printing.h"

namespace karno::test {

inline constexpr const char* kDownloaded = "/Users/tester/Downloads/Karno.app";
inline constexpr const char* kInstalled = "/Applications/Karno.app";
inline constexpr const char* kTrashed = "/Users/tester/.Trash/Karno.app";
inline constexpr const char* kExecutable = "/Contents/MacOS/Karno";
inline constexpr const char* kHdiutilLine = "/usr/bin/hdiutil|info|-plist";

// A machine with an Applications folder, whose launcher lies where a test puts it.
class MovingMachine : public FakePlatform {
 public:
  explicit MovingMachine(const std::string& bundlePath = kDownloaded) {
    files.addDirectory("/Applications");
    files.addDirectory("/Users/tester/.Trash");
    bundles.main().setPath(bundlePath);
    addLauncher(bundlePath, "new launcher");
  }

  MovingMachine& withInstalledCopy() {
    addLauncher(kInstalled, "old launcher");
    return *this;
  }

  MovingMachine& withReadOnlyApplications() {
    files.readOnly.insert("/Applications");
    return *this;
  }

  // Mounts a disk image at the folder, which is also what hdiutil says.
  MovingMachine& withDiskImageAt(const std::string& folder, const std::string& device) {
    mounts.mounts[folder] = platform::MountInformation{.sourceDevice = device, .isRootFileSystem = false};
    return withImages(platform::Value::Array{image({device})});
  }

  // What hdiutil lists: a dictionary with these images.
  MovingMachine& withImages(platform::Value images) {
    return withListing(platform::Value::Dictionary{{"images", std::move(images)}});
  }
  MovingMachine& withListing(const platform::Value& listing) {
    commands.answers.insert_or_assign(
        kHdiutilLine,
        platform::CommandEnd{.end = {}, .standardOutput = platform::propertyListXML(listing).value()});
    return *this;
  }

  static platform::Value image(const std::vector<std::string>& devices) {
    platform::Value::Array entities;
    for (const std::string& device : devices) {
      entities.emplace_back(platform::Value::Dictionary{{"dev-entry", device}});
    }
    return platform::Value::Dictionary{{"system-entities", std::move(entities)}};
  }

  // What the launcher's executable holds in the bundle at that path; empty when there is none.
  std::string launcherAt(const std::string& bundlePath) const { return files.text(bundlePath + kExecutable); }

 private:
  void addLauncher(const std::string& bundlePath, const std::string& content) {
    files.addFile(bundlePath + kExecutable, content);
    files.addSymbolicLink(bundlePath + "/Contents/Current", "MacOS");
  }
};

// An error of the move: its code and its text.
inline std::optional<platform::Error> moveError(int code, const std::string& message) {
  return platform::Error(std::string(platform::kPOSIXErrorDomain), code,
                         {{std::string(platform::kLocalizedDescriptionKey), message}});
}

inline platform::Alert question(const std::string& informativeText) {
  return {.messageText = "Move to Applications folder?",
          .informativeText = informativeText,
          .buttons = {{.title = "Move to Applications Folder", .keyEquivalent = ""},
                      {.title = "Do Not Move", .keyEquivalent = "\033"}}};
}

inline platform::Alert failureAlert() {
  return {.messageText = "Could not move to Applications folder", .informativeText = "", .buttons = {}};
}

}  // namespace karno::test
