#pragma once
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace karno::platform {

// The children of this process whose end has not been told to their termination handlers yet, with what they
// were started from. The kernel forgets a process's executable a while before it tells the parent of the end.
// Safe from any thread; lives for ever.
class RunningChildren {
 public:
  static RunningChildren& instance();

  // Executable paths by process identifier.
  std::map<std::int32_t, std::string> all() const;

  // Keeps one child in the list.
  class Entry {
   public:
    Entry(std::int32_t processIdentifier, std::string executablePath);
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

   private:
    const std::int32_t processIdentifier_;
  };

 private:
  mutable std::mutex mutex_;
  std::map<std::int32_t, std::string> children_;
};

}  // namespace karno::platform
