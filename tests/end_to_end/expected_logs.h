#pragma once
#include <string>
#include <vector>

namespace karno::test {

using Messages = std::vector<std::string>;

// The last line of a start-up that went well.
inline constexpr const char* kStarted = "INFO Sparkle[START] Starting Up";
inline constexpr const char* kFirstStartup =
    "INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)";
inline constexpr const char* kVerified = "INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (verified)";
inline constexpr const char* kTerminating = "INFO AppDelegate:: Terminating";

// What the log of a start begins with, up to the choice of the build. `parent` started it: "bash" when "open"
// did.
inline Messages openingMessages(const std::string& parent = "start") {
  return {
      "STARTUP ===================================================",
      "STARTUP Karno Log Started (defaults verboseLogging=0)",
      "STARTUP Karno Version: " KARNO_VERSION,
      "STARTUP Parent Process: " + parent + " (N)",
      "INFO AppDelegate[MOVE] Check whether app needs to be moved",
      "INFO AppDelegate[MOVE] Karno does not need to be moved. Continuing...",
  };
}

// From the check of the system to the running client.
inline Messages fileProviderMessages() {
  return {
      "INFO Startup[CHECK] Checking system for FileProvider...",
      "INFO Startup[CHECK] Using FileProvider",
      "INFO Main: System is okay - launching Karno",
      "INFO Startup[LAUNCH] Launching Karno.app",
      "INFO Startup[LAUNCH] Launched Karno.app (pid: N)",
      "INFO Main: Started Karno successfully",
      kStarted,
  };
}

// The same for the macFUSE build on an arm64 Mac with macOS 14.5 and macFUSE 4.4.1.
inline Messages fuseMessages() {
  return {
      "INFO Startup[CHECK] Checking system for Fuse...",
      "INFO Fuse[SYSTEM] CPU: 'arm64'",
      "INFO Fuse[SYSTEM] O/S Version: '14.5'",
      "INFO Fuse[SYSTEM] Fuse Version: '4.4.1'",
      "INFO FuseRequirements: System requirements have been met",
      "INFO Startup[FUSE] Fuse is installed",
      "INFO Main: System is okay - launching Karno",
      "INFO Startup[LAUNCH] Launching Karno(Fuse).app",
      "INFO Startup[LAUNCH] Launched Karno(Fuse).app (pid: N)",
      "INFO Main: Started Karno successfully",
      kStarted,
  };
}

// What follows when the client asks for the end. It ends half a second later itself, the launcher a second
// later.
inline Messages quittingMessages() {
  return {
      "INFO Notify[LISTEN] Received 'user-selected-quit'",
      "INFO AppDelegate[TERMINATE] Reason: User selected quit",
  };
}

// What follows when the client ends with that status and reason without having asked for anything.
inline Messages clientEndedMessages(const std::string& statusAndReason) {
  return {
      "WARN Startup[TERMINATED] Child terminated (" + statusAndReason + ")",
      "WARN Startup[TERMINATED] Embedded Karno.app terminated - quitting",
      "INFO AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated",
  };
}

// What follows while the launcher waits for the client to leave, which it does.
inline Messages leavingMessages(const std::string& bundleIdentifier) {
  return {
      "INFO ProcessUtils: Waiting for '" + bundleIdentifier + "' to terminate",
      "WARN Startup[TERMINATED] Child terminated (status:0, reason:1)",
      "WARN Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted",
      "WARN ProcessUtils: '" + bundleIdentifier + " terminated (S seconds)",
  };
}

// What follows while the launcher waits for the client to leave, which stays.
inline Messages stayingMessages(const std::string& bundleIdentifier) {
  return {
      "INFO ProcessUtils: Waiting for '" + bundleIdentifier + "' to terminate",
      "WARN ProcessUtils: '" + bundleIdentifier + "' has not terminated (timed-out after 5.0 seconds)",
  };
}

inline Messages joined(const std::vector<Messages>& parts) {
  Messages all;
  for (const Messages& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace karno::test
