#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "fake_scheduler.h"
#include "platform/console_log.h"

namespace karno::test {

// Keeps every line of the console log.
class FakeConsoleLog final : public platform::ConsoleLog {
 public:
  struct Entry {
    std::string line;
    std::string thread;  // on which it was written
  };

  explicit FakeConsoleLog(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  void log(std::string_view line) override {
    scheduler_.countAction();
    entries_.push_back({std::string(line), scheduler_.currentThreadName()});
    if (whenLogged) whenLogged(line);
  }

  std::function<void(std::string_view line)> whenLogged;  // runs inside every call, on its thread

  const std::vector<Entry>& entries() const { return entries_; }

  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    for (const Entry& entry : entries_) result.push_back(entry.line);
    return result;
  }

 private:
  FakeScheduler& scheduler_;
  std::vector<Entry> entries_;
};

}  // namespace karno::test
