#include "platform/linux/preferences/last_stores.h"

#include <cstdlib>

#include "platform/linux/preferences/defaults_file.h"
#include "platform/never_destroyed.h"

namespace karno::platform {

// Threads go on setting values while exit() runs.
LastStores& LastStores::instance() {
  static NeverDestroyed<LastStores> stores;
  return stores.get();
}

LastStores::LastStores() {
  std::atexit([] { instance().storeAll(); });
}

void LastStores::add(DefaultsFile& file) {
  const std::scoped_lock lock(mutex_);
  files_.insert(&file);
}

void LastStores::remove(DefaultsFile& file) {
  const std::scoped_lock lock(mutex_);
  files_.erase(&file);
}

void LastStores::storeAll() {
  const std::scoped_lock lock(mutex_);
  for (DefaultsFile* const file : files_) file->storeForTheLastTime();
}

}  // namespace karno::platform
