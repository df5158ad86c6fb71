#pragma once
#include <sys/stat.h>

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform {

// One property-list file of user defaults that several processes read and write. Safe from any thread.
class DefaultsFile {
 public:
  // An empty path holds nothing and takes nothing.
  explicit DefaultsFile(std::string path);

  // As the file is now. Missing, unreadable and damaged files hold nothing. A value that could not be stored
  // counts all the same in this process.
  std::optional<Value> valueForKey(std::string_view key);

  // Stores one value, or removes the key without one, and keeps all others, also those that another process
  // stores at the same time. A damaged file is set aside first. A failure becomes a console line; the next
  // call tries to store the value again.
  void setValue(const std::optional<Value>& value, std::string_view key);

  // Makes sure that the folder's entry for the file is on disk, too.
  void synchronize();

 private:
  bool isCacheCurrent() const;
  void readAfresh();
  using Changes = std::map<std::string, std::optional<Value>, std::less<>>;

  std::optional<Error> store(const Changes& changes);
  Result<Value::Dictionary> contentForWriting();

  const std::string path_;

  std::mutex mutex_;
  Changes unstored_;  // what was set and is not in the file yet
  Value::Dictionary cache_;
  std::optional<struct stat>
      cachedStatus_;  // of the file that cache_ was read from; absent when not to be trusted
};

}  // namespace karno::platform
