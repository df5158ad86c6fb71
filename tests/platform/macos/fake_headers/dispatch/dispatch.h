#pragma once
#include <cstdint>

// The part of Grand Central Dispatch that platform/macos calls, declared as macOS does. What the objects hold
// is the tests' own, see grand_central.h.
struct dispatch_object_s {
  int references = 1;
};
struct dispatch_queue_s : dispatch_object_s {
  const char* name = "";
};
struct dispatch_group_s : dispatch_object_s {};
struct dispatch_queue_attr_s : dispatch_object_s {};

using dispatch_object_t = dispatch_object_s*;
using dispatch_queue_t = dispatch_queue_s*;
using dispatch_group_t = dispatch_group_s*;
using dispatch_queue_attr_t = dispatch_queue_attr_s*;
using dispatch_function_t = void (*)(void*);
using dispatch_time_t = std::uint64_t;

#define DISPATCH_QUEUE_SERIAL nullptr
#define DISPATCH_TIME_NOW 0ULL
#define DISPATCH_QUEUE_PRIORITY_HIGH 2
#define DISPATCH_QUEUE_PRIORITY_DEFAULT 0
#define DISPATCH_QUEUE_PRIORITY_LOW (-2)
#define DISPATCH_QUEUE_PRIORITY_BACKGROUND INT16_MIN

extern "C" {
dispatch_queue_t dispatch_get_main_queue();
dispatch_queue_t dispatch_get_global_queue(std::intptr_t identifier, std::uintptr_t flags);
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_release(dispatch_object_t object);
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);
dispatch_group_t dispatch_group_create();
void dispatch_group_enter(dispatch_group_t group);
void dispatch_group_leave(dispatch_group_t group);
std::intptr_t dispatch_group_wait(dispatch_group_t group, dispatch_time_t timeout);
}
