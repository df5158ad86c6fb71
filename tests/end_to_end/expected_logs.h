#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace karno::test {

using Messages = std::vector<std::string>;

inline Messages joined(const std::vector<Messages>& parts) {
  Messages all;
  for (const Messages& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// The last line of a start-up that went well.
inline constexpr const char* kStarted = "INFO Sparkle[START] Starting Up";
inline constexpr const char* kFirstStartup =
    "INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)";
inline constexpr const char* kVerified = "INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (verified)";
inline constexpr const char* kTerminating = "INFO AppDelegate:: Terminating";

// A feed that nobody serves: the connection is refused at once.
inline constexpr const char* kNoFeed = "https://localhost:1/appcast.xml";

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

// The choice of the FUSE build that `--admin USE_FILE_PROVIDER=NO` makes. The administrator's value is read
// twice.
inline Messages fuseChosenMessages() {
  return {"WARN Object=NO", "INFO EmbeddedApp[CONFIGURE] Use File Provider = No (admin)", "WARN Object=NO"};
}

// What the machine is found to be, up to where macFUSE is looked for.
inline Messages fuseSystemMessages(const std::string& cpu, const std::string& macOS) {
  return {"INFO Startup[CHECK] Checking system for Fuse...", "INFO Fuse[SYSTEM] CPU: '" + cpu + "'",
          "INFO Fuse[SYSTEM] O/S Version: '" + macOS + "'"};
}

// macFUSE was found and is recent enough.
inline Messages fuseMetMessages(const std::string& version) {
  return {"INFO Fuse[SYSTEM] Fuse Version: '" + version + "'",
          "INFO FuseRequirements: System requirements have been met", "INFO Startup[FUSE] Fuse is installed"};
}

// From a system that is in order to the running client.
inline Messages launchMessages(const std::string& client) {
  return {
      "INFO Main: System is okay - launching Karno",
      "INFO Startup[LAUNCH] Launching " + client,
      "INFO Startup[LAUNCH] Launched " + client + " (pid: N)",
      "INFO Main: Started Karno successfully",
      kStarted,
  };
}

inline constexpr const char* kFuseMissing = "WARN Fuse[SYSTEM] Fuse is not installed";
inline constexpr const char* kFuseUnmet = "WARN FuseRequirements: System requirements not met";
inline constexpr const char* kFuseNeeded = "INFO Main: Need to install Fuse";
inline constexpr const char* kWaitingForFuse = "INFO Startup[FUSE] Waiting for Fuse to install";

// What follows when the user goes on to the web site, up to the wait for macFUSE.
inline Messages fuseDownloadMessages() {
  return {"INFO Main: User pressed continue to install Fuse",
          "INFO Startup[FUSE] Showing macFuse website and asking user to install Fuse", kWaitingForFuse};
}

// What follows when the user does not want macFUSE.
inline Messages fuseCancelledMessages() {
  return {"INFO Main: User pressed cancel - not installing Fuse",
          "INFO AppDelegate[TERMINATE] Reason: User cancelled install of Fuse", kTerminating};
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

// The messages without those of a client that leaves by itself after it has asked for the launcher's end.
// Half a second lies between its end and the launcher's: on a busy machine it is told late, or not at all.
inline Messages withoutClientsEnd(Messages messages) {
  const Messages ends =
      joined({clientEndedMessages("status:0, reason:1"),
              {"WARN Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated"}});
  std::erase_if(messages, [&ends](const std::string& message) {
    return std::find(ends.begin(), ends.end(), message) != ends.end();
  });
  return messages;
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

}  // namespace karno::test
