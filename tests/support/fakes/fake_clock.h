#pragma once
#include "fake_scheduler.h"
#include "platform/clock.h"

namespace karno::test {

// 2024-03-05T13:07:09.042Z, a winter day in Berlin (14:07:09).
inline constexpr platform::Date kStartOfTest =
    platform::Date(std::chrono::sys_days(std::chrono::year(2024) / 3 / 5)) + std::chrono::hours(13) +
    std::chrono::minutes(7) + std::chrono::seconds(9) + std::chrono::milliseconds(42);

// The wall clock: starts at kStartOfTest and advances with virtual time.
class FakeClock final : public platform::Clock {
 public:
  explicit FakeClock(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  platform::Date now() const override {
    scheduler_.countAction();
    return startDate_ + std::chrono::nanoseconds(scheduler_.nanosecondsSinceStart());
  }

  // As if somebody set the computer's clock; virtual time does not change.
  void setNow(platform::Date date) {
    startDate_ = date - std::chrono::nanoseconds(scheduler_.nanosecondsSinceStart());
  }

 private:
  FakeScheduler& scheduler_;
  platform::Date startDate_ = kStartOfTest;
};

}  // namespace karno::test
