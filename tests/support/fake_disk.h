#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

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

// The mount of a folder is what a test says for exactly that folder; all else lies on the root file system.
class FakeMounts final : public platform::Mounts {
 public:
  std::optional<platform::MountInformation> informationOf(const std::string& path) const override {
    asked.push_back(path);
    const auto found = mounts.find(path);
    if (found != mounts.end()) return found->second;
    return platform::MountInformation{.sourceDevice = "/dev/disk1s1", .isRootFileSystem = true};
  }

  std::map<std::string, std::optional<platform::MountInformation>> mounts;
  mutable std::vector<std::string> asked;
};

}  // namespace karno::test
