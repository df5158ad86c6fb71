#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fake_files.h"
#include "platform/mounts.h"
#include "platform/standard_folders.h"

namespace karno::test {

class FakeStandardFolders final : public platform::StandardFolders {
 public:
  std::vector<std::string> inAllDomains(platform::StandardFolder folder) const override {
    return folders.at(folder);
  }
  std::string localApplications() const override { return local; }

  std::map<platform::StandardFolder, std::vector<std::string>> folders = {
      {platform::StandardFolder::Applications,
       {"/Users/tester/Applications", "/Applications", "/Network/Applications", "/System/Applications"}},
      {platform::StandardFolder::Downloads, {"/Users/tester/Downloads"}}};
  std::string local = "/Applications";
};

// The mounts are what a test says of folders of the fake disk, by paths without links, and hold what lies in
// them; all else lies on the root file system.
class FakeMounts final : public platform::Mounts {
 public:
  explicit FakeMounts(const FakeFiles& files) : files_(files) {}

  std::optional<platform::MountInformation> informationOf(const std::string& path) const override {
    asked.push_back(path);
    if (!files_.fileExists(path)) return std::nullopt;
    for (std::string place = files_.resolvingSymbolicLinks(path); !place.empty();
         place.erase(place.rfind('/'))) {
      const auto found = mounts.find(place);
      if (found != mounts.end()) return found->second;
    }
    return platform::MountInformation{.sourceDevice = "/dev/disk1s1", .isRootFileSystem = true};
  }

  std::map<std::string, std::optional<platform::MountInformation>> mounts;
  mutable std::vector<std::string> asked;

 private:
  const FakeFiles& files_;
};

}  // namespace karno::test
