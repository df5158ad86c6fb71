#pragma once
#include <functional>
#include <string>

#include "fake_scheduler.h"

namespace karno::simulation {

// From now on mutexes, condition variables and the guards of static variables of this process belong to that
// scheduler: who would wait for one lets others go on, and who would wait for ever is told of. Every lock is
// a place where another thread may go on first. `onDeadlock` does not return.
void interpose(test::FakeScheduler& scheduler, std::function<void(const std::string&)> onDeadlock);

}  // namespace karno::simulation
