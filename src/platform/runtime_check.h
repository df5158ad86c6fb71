#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "platform/error.h"

namespace karno::platform {

// How many of the messages that the launcher sends were looked for, and which were not found. A message is
// written "-[NSAlert runModal]" or "+[NSUUID UUID]".
struct MessageCensus {
  std::size_t lookedFor = 0;
  std::vector<std::string> missing;
  std::vector<std::string> doneWithout;  // not found either, but asked for before it is sent
};

// Holds what the launcher takes for granted against the system it runs on. For tools and tests: the launcher
// itself finds out when it comes to it, so this is no part of its Platform. One thread at a time.
class RuntimeCheck {
 public:
  virtual ~RuntimeCheck() = default;

  // The program that this process runs, with every link in its path resolved; empty when it cannot be learnt.
  virtual std::string programPath() const = 0;

  // Whether the path leads to a regular file that this user may run.
  virtual bool isExecutable(const std::string& path) const = 0;

  // Looks for every message that goes to a class of the system.
  virtual MessageCensus systemMessages() const = 0;

  // Loads the updater framework in that folder into this process, where it stays, and looks for every message
  // that goes to its classes. The error says why it cannot be loaded.
  virtual Result<MessageCensus> updaterMessages(const std::string& framework) const = 0;

  // Raises an exception in the system and says whether it became an error, as it does everywhere else in the
  // launcher. Where it does not, this process may come to its end.
  virtual bool exceptionsBecomeErrors() const = 0;
};

// That of this system. After nativePlatform(), which starts the system's runtime.
RuntimeCheck& nativeRuntimeCheck();

}  // namespace karno::platform
