#pragma once
#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "platform/error.h"
#include "platform/linux/preferences/unstored_changes.h"
#include "platform/notices.h"
#include "platform/value.h"

namespace karno::platform {

// How long whom another process's lock on the file may hold up.
struct DefaultsFileWaits {
  std::chrono::milliseconds lockMax{1000};       // who sets a value
  std::chrono::milliseconds retryLockMax{100};   // each try in the background, and the last one
  std::chrono::milliseconds firstRetry{250};     // before the first try in the background; then twice as
  std::chrono::milliseconds longestRetry{5000};  // long each time, up to this
};

// One property-list file of user defaults that several processes read and write. Safe from any thread.
//
// Who writes holds the lock of the file beside it. Who reads needs none and waits for nobody: a file is only
// ever replaced, by renaming a complete one, so a reader has the values before a change or those after it.
// What another program writes in place may be read half done, which is a damaged file; a lock that such a
// program does not take would not help.
class DefaultsFile {
 public:
  // An empty path holds nothing and takes nothing.
  DefaultsFile(std::string path, Notices& notices, DefaultsFileWaits waits = {});

  // Tries once more to store what is not stored.
  ~DefaultsFile();
  DefaultsFile(const DefaultsFile&) = delete;
  DefaultsFile& operator=(const DefaultsFile&) = delete;

  // As the file is now. Missing, unreadable and damaged files hold nothing. A value that is not stored yet
  // counts all the same in this process.
  std::optional<Value> valueForKey(std::string_view key);

  // Stores one value, or removes the key without one, and keeps all others, also those that another process
  // stores at the same time. A damaged file is set aside first.
  //
  // What cannot be stored, since another process keeps the lock or for any other reason, is told in the
  // notices and tried again in the background and with each further value, none of which waits for the lock
  // again, until all is stored, which is told as well. The last try is made when the process ends in an
  // orderly way; what the lock keeps out even then is told.
  void setValue(const std::optional<Value>& value, std::string_view key);

  // Makes sure that what was set is in the file, if the lock can be had in the time that setting a value may
  // take, and that the folder's entry for the file is on disk, too.
  void synchronize();

  // The last try. For the end of the process.
  void storeForTheLastTime();

 private:
  bool isCacheCurrent() const;
  void readAfresh();

  std::chrono::milliseconds noteChange(const std::optional<Value>& value, std::string_view key);
  std::optional<Error> store(std::chrono::milliseconds lockWaitMax);
  std::optional<Error> storeUnderLock(std::chrono::milliseconds lockWaitMax);
  bool hasUnstored();
  bool endLateness();
  void tellFailure(std::string_view key, const Error& error);
  void beginLateness(const Error& error, std::string_view key);
  void startRetries();
  void retryUntilTheEnd();

  const std::string path_;
  Notices& notices_;
  const DefaultsFileWaits waits_;
  std::once_flag noted_;  // with the files that get a last try

  // Never held while the file's lock is waited for, so that reading goes on.
  std::mutex mutex_;
  std::condition_variable retriesChanged_;  // isLate_ or isEnding_
  UnstoredChanges unstored_;
  bool isLate_ = false;  // something could not be stored, has been told, and is tried again
  bool isEnding_ = false;
  Value::Dictionary cache_;
  std::optional<struct stat>
      cachedStatus_;  // of the file that cache_ was read from; absent when not to be trusted

  std::thread retries_;  // from the first lateness on
};

}  // namespace karno::platform
