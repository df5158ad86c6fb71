#include "platform/linux/dispatch/dispatch.h"

#include <utility>

#include "platform/cocoa/runtime/threads.h"
#include "platform/linux/dispatch/counting_group.h"
#include "platform/linux/dispatch/serial_queue.h"

namespace karno::platform {

Queue& LinuxDispatch::globalQueue(QueuePriority priority) {
  return priority == QueuePriority::Background ? background_ : normal_;
}

std::shared_ptr<Queue> LinuxDispatch::makeSerialQueue(std::string label) {
  return std::make_shared<SerialQueue>(pool_, std::move(label));
}

std::shared_ptr<DispatchGroup> LinuxDispatch::makeGroup() { return std::make_shared<CountingGroup>(); }

bool LinuxDispatch::isMainThread() const { return cocoa::isMainThread(); }

}  // namespace karno::platform
