#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "karnoctl/state/story_reading.h"
#include "platform/date.h"
#include "platform/platform.h"

namespace karno::karnoctl {

// A build of the embedded application that a launcher has started.
struct RunningClient {
  std::int32_t processIdentifier = 0;
  std::string bundlePath;
  std::string executablePath;  // elsewhere for a script, and for a client that has become another program
  std::optional<platform::Date> startDate;
};

struct RunningLauncher {
  std::int32_t processIdentifier = 0;
  std::string bundlePath;
  std::optional<std::string> version;  // CFBundleShortVersionString
  std::optional<platform::Date> startDate;
};

// A launcher with what its log tells, which says of a child whether it is the client where its program does
// not.
struct ObservedLauncher {
  RunningLauncher launcher;
  LoggedProcess logged;
  std::vector<RunningClient> clients;  // more than one only for a moment
  std::vector<platform::RunningProcess> otherChildren;

  // Whether it is known that no client runs.
  bool hasNoClient() const;
};

// The folder X.app of a program X.app/Contents/MacOS/NAME; absent for one that lies elsewhere.
std::optional<std::string> bundlePathOf(const std::string& program);

// The launchers of this user, in ascending order of their process identifiers.
std::vector<RunningLauncher> runningLaunchers(const platform::Platform& platform);

// Each of them with its client and its log.
std::vector<ObservedLauncher> observedLaunchers(const platform::Platform& platform);

}  // namespace karno::karnoctl
