#pragma once
#include <mutex>
#include <set>

namespace karno::platform {

class DefaultsFile;

// The files that get a last try to store what is not stored yet when the process ends by exit() or by
// returning from main(). Any thread.
class LastStores {
 public:
  static LastStores& instance();

  // Until remove(), which waits for a try that has begun.
  void add(DefaultsFile& file);
  void remove(DefaultsFile& file);

  LastStores();  // for instance() alone

 private:
  void storeAll();

  std::mutex mutex_;
  std::set<DefaultsFile*> files_;
};

}  // namespace karno::platform
