#pragma once
#include <deque>
#include <functional>
#include <vector>

#include "fake_scheduler.h"
#include "platform/alerts.h"

namespace karno::test {

// Alerts that are answered by a script, with the first button where the script says nothing.
class FakeAlerts final : public platform::Alerts {
 public:
  explicit FakeAlerts(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  long runModal(const platform::Alert& alert) override {
    scheduler_.requireMainThread("Alerts::runModal");
    shown_.push_back(alert);
    if (script_.empty()) return platform::kAlertFirstButtonReturn;
    const Step step = std::move(script_.front());
    script_.pop_front();
    if (step.whileUp) step.whileUp();
    return step.answer;
  }

  // Answers one alert to come. The block runs while it is up and may run the machine.
  void answerNext(long answer, std::function<void()> whileUp = nullptr) {
    script_.push_back({answer, std::move(whileUp)});
  }

  const std::vector<platform::Alert>& shown() const { return shown_; }

 private:
  struct Step {
    long answer;
    std::function<void()> whileUp;
  };

  FakeScheduler& scheduler_;
  std::deque<Step> script_;
  std::vector<platform::Alert> shown_;
};

}  // namespace karno::test
