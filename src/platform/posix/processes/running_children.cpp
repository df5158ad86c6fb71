#include "platform/posix/processes/running_children.h"

#include <utility>

#include "platform/never_destroyed.h"

namespace karno::platform {

RunningChildren& RunningChildren::instance() {
  static NeverDestroyed<RunningChildren> children;
  return children.get();
}

std::map<std::int32_t, std::string> RunningChildren::all() const {
  const std::scoped_lock lock(mutex_);
  return children_;
}

RunningChildren::Entry::Entry(std::int32_t processIdentifier, std::string executablePath)
    : processIdentifier_(processIdentifier) {
  RunningChildren& list = instance();
  const std::scoped_lock lock(list.mutex_);
  list.children_.insert_or_assign(processIdentifier, std::move(executablePath));
}

RunningChildren::Entry::~Entry() {
  RunningChildren& list = instance();
  const std::scoped_lock lock(list.mutex_);
  list.children_.erase(processIdentifier_);
}

}  // namespace karno::platform
