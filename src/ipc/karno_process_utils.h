#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dispatch.h"
#include "util/error.h"

namespace karno {

// Process control, short shell commands and moving work between threads. Stateless; safe from any thread.
class KarnoProcessUtils {
 public:
  // The kernel's short name of the process, or "Unknown".
  static std::string stringForProcessNameForPid(std::int32_t processIdentifier);

  // Sends the termination signal and waits at most ten seconds. True when the process was a child of ours and
  // has been reaped; a stronger signal is never sent. Zero and negative identifiers, which would mean whole
  // groups of processes, are refused. `tag` names the occasion for the reader of the code.
  static bool terminateKarnoAppWithPid(std::int32_t processIdentifier, std::string_view tag);

  // Waits for a child to end, in seconds. False also, and at once, for a process that is no child of ours.
  // After a time-out a thread goes on waiting until the child has ended.
  static bool waitForProcessTermination(std::int32_t processIdentifier, double timeout, std::string_view tag);

  // Looks four times a second, at least once, until no application with that bundle identifier runs any more.
  // False when one still runs after `timeout` seconds. Blocks: not for the main thread.
  static bool waitForApplicationToTerminateWithBundleID(const std::string& bundleID, double timeout,
                                                        std::string_view tag);

  static bool isApplicationRunningWithBundleID(const std::string& bundleID);

  // Runs one shell command line, as a user would type it, and waits without limit until it has exited. What
  // it prints on standard output is appended to `output` (which may be null) in pieces of at most 4095 bytes,
  // each ending at a newline, its bytes read as Latin-1; trimmed of white space and newlines at both ends if
  // asked. True for any exit status; false when the command could not be started or its end not be learnt.
  // `error` (which may be null) is set only when it could not be started.
  static bool executeCommand(const std::string& command, std::vector<std::string>* output, bool trimOutput,
                             std::optional<Error>* error);

  // Runs the block on a later turn of the main queue, also when called on the main thread.
  static void runInMainThread(platform::Block block);

  // Runs the block on a serial queue of its own.
  static void runOnBackgroundThread(platform::Block block);

  static void runOnBackgroundQueue(platform::Queue& queue, platform::Block block);
};

}  // namespace karno
