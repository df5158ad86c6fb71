#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace karno::platform {

struct RunningApplication {
  std::int32_t processIdentifier = 0;  // -1 when its process has ended
  std::optional<std::string> bundleIdentifier;
};

class Workspace {
 public:
  virtual ~Workspace() = default;

  // Shows the file in the file viewer, with the viewer rooted at that folder. Main thread only.
  virtual void selectFile(const std::string& path, const std::string& rootFolder) = 0;

  // Opens the URL in the user's web browser. Any thread; returns without waiting for it. A failure is not
  // told.
  virtual void openURL(const std::string& url) = 0;

  // The applications that run now and were started from a bundle with that identifier. Any thread; meant to
  // be asked several times a second.
  virtual std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) = 0;

  // Brings that application in front of the others, as far as the system lets one application do that for
  // another. Main thread only. Nothing happens on Linux.
  virtual void activateApplication(std::int32_t processIdentifier) = 0;

  // The paths of the bundles that the applications which run now were started from, this one included; one
  // without a bundle is left out. Any thread.
  virtual std::vector<std::string> bundlePathsOfRunningApplications() = 0;
};

}  // namespace karno::platform
