#include "grand_central.h"

#include <fmt/format.h>

#include <thread>
#include <utility>

namespace karno::platform::trial {

GrandCentral::GrandCentral() { current_ = this; }
GrandCentral::~GrandCentral() { current_ = nullptr; }

void GrandCentral::runNextOnAnotherThread() {
  const Waiting next = waiting_.at(0);
  waiting_.erase(waiting_.begin());
  std::thread([next] { next.work(next.context); }).join();
}

dispatch_queue_t GrandCentral::makeQueue(std::string name) {
  auto made = std::make_unique<NamedQueue>(NamedQueue{std::move(name), {}});
  made->queue.name = made->name.c_str();
  queues_.push_back(std::move(made));
  return &queues_.back()->queue;
}

dispatch_group_t GrandCentral::makeGroup() {
  groups_.push_back(std::make_unique<dispatch_group_s>());
  return groups_.back().get();
}

void GrandCentral::enqueue(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  lines.push_back(std::string("async ") + queue->name);
  waiting_.push_back({context, work});
}

}  // namespace karno::platform::trial

using karno::platform::trial::GrandCentral;

dispatch_queue_t dispatch_get_main_queue() { return GrandCentral::current().makeQueue("main"); }

dispatch_queue_t dispatch_get_global_queue(std::intptr_t identifier, std::uintptr_t flags) {
  return GrandCentral::current().makeQueue(fmt::format("global {} {}", identifier, flags));
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
  GrandCentral::current().lines.push_back(
      fmt::format("create {} {}", label, attributes == DISPATCH_QUEUE_SERIAL ? "serial" : "with attributes"));
  return GrandCentral::current().makeQueue(label);
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  GrandCentral::current().enqueue(queue, context, work);
}

void dispatch_release(dispatch_object_t object) {
  GrandCentral::current().lines.push_back(fmt::format("release, {} left", --object->references));
}

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
  GrandCentral::current().lines.push_back(fmt::format("{} ns from {}", nanoseconds, when));
  return 4711;
}

dispatch_group_t dispatch_group_create() {
  GrandCentral::current().lines.push_back("create a group");
  return GrandCentral::current().makeGroup();
}

void dispatch_group_enter(dispatch_group_t) { GrandCentral::current().lines.push_back("enter"); }

void dispatch_group_leave(dispatch_group_t) { GrandCentral::current().lines.push_back("leave"); }

std::intptr_t dispatch_group_wait(dispatch_group_t, dispatch_time_t timeout) {
  GrandCentral::current().lines.push_back(fmt::format("wait until {}", timeout));
  return GrandCentral::current().waitAnswer;
}
