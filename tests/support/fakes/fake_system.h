#pragma once
#include <array>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fake_bundles.h"
#include "fake_process_table.h"
#include "fake_scheduler.h"
#include "platform/identifiers.h"
#include "platform/system_version.h"
#include "platform/workspace.h"

namespace karno::test {

class FakeSystemVersion final : public platform::SystemVersion {
 public:
  bool isAtLeast(int major, int minor, int patch) const override {
    return running >= std::array<int, 3>{major, minor, patch};
  }

  double appKitVersionNumber() const override { return appKit; }

  std::array<int, 3> running = {14, 5, 0};
  double appKit = 2487;
};

// UUIDs that count up.
class FakeIdentifiers final : public platform::Identifiers {
 public:
  std::string makeUUID() override {
    const std::string number = std::to_string(++made_);
    return "00000000-0000-4000-8000-" + std::string(12 - number.size(), '0') + number;
  }

 private:
  int made_ = 0;
};

class FakeWorkspace final : public platform::Workspace {
 public:
  FakeWorkspace(FakeScheduler& scheduler, const FakeProcessTable& processes, const FakeBundles& bundles)
      : scheduler_(scheduler), processes_(processes), bundles_(bundles) {}

  void selectFile(const std::string& path, const std::string& rootFolder) override {
    scheduler_.requireMainThread("Workspace::selectFile");
    selected.emplace_back(path, rootFolder);
  }

  void openURL(const std::string& url) override {
    opened.push_back({url, scheduler_.currentThreadName()});
    if (whenOpened) whenOpened();
  }

  void activateApplication(std::int32_t processIdentifier) override {
    scheduler_.requireMainThread("Workspace::activateApplication");
    activated.push_back(processIdentifier);
  }
  std::vector<std::int32_t> activated;

  struct Opened {
    std::string url;
    std::string thread;
    bool operator==(const Opened&) const = default;
  };
  std::vector<Opened> opened;
  std::function<void()> whenOpened;  // runs inside every opening

  std::vector<platform::RunningApplication> runningApplications(
      const std::string& bundleIdentifier) override {
    asked.push_back({bundleIdentifier, scheduler_.secondsSinceStart()});
    std::vector<platform::RunningApplication> all = running;
    for (const auto& [identifier, bundlePath] : processes_.applicationsWithUntoldEnds()) {
      const auto bundle = bundles_.bundleAtPath(bundlePath);
      if (bundle && !forgotten.contains(identifier)) all.push_back({identifier, bundle->bundleIdentifier()});
    }
    std::vector<platform::RunningApplication> found;
    for (const auto& application : all) {
      if (!filters || application.bundleIdentifier == bundleIdentifier) found.push_back(application);
    }
    return found;
  }

  std::vector<std::string> bundlePathsOfRunningApplications() override {
    std::vector<std::string> paths;
    for (const auto& application : processes_.applications()) paths.push_back(application.bundlePath);
    return paths;
  }

  struct Asked {
    std::string bundleIdentifier;
    double atSeconds;
    bool operator==(const Asked&) const = default;
  };
  std::vector<Asked> asked;                           // every question after running applications
  std::vector<platform::RunningApplication> running;  // beside those in the table of processes
  std::set<std::int32_t> forgotten;                   // those of the table that are not told any more
  bool filters = true;                                // false: every question is answered with all that run
  std::vector<std::pair<std::string, std::string>> selected;  // path and root folder

 private:
  FakeScheduler& scheduler_;
  const FakeProcessTable& processes_;
  const FakeBundles& bundles_;
};

}  // namespace karno::test
