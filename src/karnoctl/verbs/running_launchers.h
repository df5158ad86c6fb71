#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.h"
#include "platform/platform.h"

namespace karno::karnoctl {

// A build of the embedded application that a launcher has started.
struct RunningClient {
  std::int32_t processIdentifier = 0;
  std::string bundlePath;
  std::optional<platform::Date> startDate;
};

struct RunningLauncher {
  std::int32_t processIdentifier = 0;
  std::string bundlePath;
  std::optional<std::string> version;  // CFBundleShortVersionString
  std::optional<platform::Date> startDate;
  std::vector<RunningClient> clients;  // more than one only for a moment
};

// The launchers of this user, in ascending order of their process identifiers, each with the children that
// run from its own Contents/Helpers.
std::vector<RunningLauncher> runningLaunchers(const platform::Platform& platform);

}  // namespace karno::karnoctl
