#pragma once
#include <chrono>
#include <string>
#include <vector>

#include "karnoctl/diagnose/diagnosis.h"
#include "log/date_texts.h"

namespace karno::test {

// 2024-03-05 14:07:09:042+0100
inline constexpr platform::Date kLogBegins{std::chrono::milliseconds{1'709'644'029'042}};

// What launchers write into a log, in its order.
class WrittenLog {
 public:
  // A message of the launcher that speaks, some seconds after the last.
  WrittenLog& says(const std::string& message, double secondsLater = 0) {
    date_ += std::chrono::milliseconds(static_cast<long>(secondsLater * 1000));
    lines_.push_back(stringForLogDate(date_) + " (" + std::to_string(process_) + ") [INFO] " + message);
    return *this;
  }

  // From now on that launcher speaks.
  WrittenLog& by(int process) {
    process_ = process;
    return *this;
  }

  WrittenLog& beginsToRun() {
    return says("===================================================")
        .says("Karno Log Started 05 Mar 2024 14:07:09")
        .says("Karno Version: 3.2.1")
        .says("Parent Process: launchd (1)");
  }

  WrittenLog& launches(const std::string& client = "Karno.app") {
    return says("Startup[LAUNCH] Launching " + client)
        .says("Startup[LAUNCH] Launched " + client + " (pid: 4250)")
        .says("Main: Started Karno successfully");
  }

  // The client, and the launcher with it.
  WrittenLog& ends(int status, int reason, double secondsLater) {
    return says("Startup[TERMINATED] Child terminated (status:" + std::to_string(status) +
                    ", reason:" + std::to_string(reason) + ")",
                secondsLater)
        .says("Startup[TERMINATED] Embedded Karno.app terminated - quitting")
        .quits("Embedded Karno.app terminated");
  }

  WrittenLog& quits(const std::string& reason) {
    return says("AppDelegate[TERMINATE] Reason: " + reason).says("AppDelegate:: Terminating");
  }

  WrittenLog& hasLine(const std::string& line) {
    lines_.push_back(line);
    return *this;
  }

  const std::vector<std::string>& lines() const { return lines_; }

  std::string text() const {
    std::string text;
    for (const std::string& line : lines_) text += line + "\n";
    return text;
  }

  platform::Date date() const { return date_; }

 private:
  std::vector<std::string> lines_;
  platform::Date date_ = kLogBegins;
  int process_ = 4242;
};

// What is found in it where that is known of the last launcher.
inline karnoctl::Diagnosis diagnosisOf(const WrittenLog& log, std::optional<bool> runs = true) {
  karnoctl::Diagnostician reader;
  for (const std::string& line : log.lines()) reader.take(line);
  return reader.diagnosis([&](const auto&) { return runs; }, log.date());
}

inline std::vector<std::string> namesOf(const karnoctl::Diagnosis& diagnosis) {
  std::vector<std::string> names;
  for (const karnoctl::Finding& finding : diagnosis.findings) names.emplace_back(finding.cause->name);
  return names;
}

}  // namespace karno::test
