#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "burst_tally.h"
#include "expected_logs.h"
#include "ipc/wrapper_protocol.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::SizeIs;

constexpr int kRestarts = 200;
constexpr int kSenders = 4;
constexpr int kEach = 25'000;
constexpr int kResidentMebibytesMax = 128;
constexpr std::chrono::seconds kBurstLimit{200};  // ten seconds are enough where nothing else runs

// The most that was ever resident.
int peakMebibytes(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::atoi(line.c_str() + 6) / 1024;
  }
  return 0;
}

// Every tenth notification has a known message, one without an effect that could be seen.
std::string postFromAllAtOnce() {
  std::string command;
  for (const char* const sender : {"north", "east", "south", "west"}) {
    std::string texts;
    for (int count = 0; count < 9; ++count) texts += fmt::format("{}-%|", sender);
    command +=
        fmt::format("'{}' {} {} {} 'message={}{}' & ", postNotification().string(), kWrapperNotificationName,
                    kWrapperNotificationObject, kEach, texts, kEnableAutomaticUpdates);
  }
  return command + "wait";
}

std::size_t heardIn(const std::string& console) {
  const BurstTally tally = tallyOf(console);
  std::size_t heard = tally.switchedOn;
  for (const auto& [sender, numbers] : tally.numbers) heard += numbers.size();
  return heard;
}

std::vector<int> nineOfTen() {
  std::vector<int> numbers;
  for (int number = 1; number <= kEach; ++number) {
    if (number % 10 != 0) numbers.push_back(number);
  }
  return numbers;
}

TEST(Burst, OfManySendersIsHandledInTheOrderOfEachWithoutGrowing) {
  Machine machine(builtTools());
  machine.useFeed(kNoFeed);
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));

  const CommandResult posted = machine.in({"sh", "-c", postFromAllAtOnce()}, kBurstLimit);
  // The bus keeps the order of one sender only: a quit from another may overtake what still waits to be sent.
  const bool allWereHeard = machine.waitUntil(
      [&] { return heardIn(machine.consoleText()) == std::size_t{kSenders} * kEach; }, kBurstLimit);
  const CommandResult quit = machine.in({"karnoctl", "post", "user-selected-quit"});
  const bool answered = machine.waitUntil(
      [&] { return machine.consoleText().find("Reason: User selected quit") != std::string::npos; },
      kBurstLimit);
  const int peak = peakMebibytes(launchers[0]);

  ASSERT_EQ(posted.status, 0) << posted.output;
  ASSERT_EQ(quit.status, 0) << quit.output;
  EXPECT_TRUE(allWereHeard);
  EXPECT_TRUE(answered);
  EXPECT_EQ(machine.waitForEnd(kBurstLimit), 0);
  const BurstTally tally = tallyOf(machine.consoleText());
  EXPECT_EQ(
      tally.numbers,
      (std::map<std::string, std::vector<int>>{
          {"east", nineOfTen()}, {"north", nineOfTen()}, {"south", nineOfTen()}, {"west", nineOfTen()}}));
  EXPECT_EQ(tally.switchedOn, std::size_t{kSenders} * kEach / 10);
  EXPECT_EQ(tally.withoutConsequence, 0U);
  std::cout << "resident at most: " << peak << " MiB\n";
  EXPECT_LT(peak, kResidentMebibytesMax);
}

// Each of them waits for the child on a thread of its own, and starts one when it is gone.
TEST(Burst, OfRestartsEndsInOrderAndLeavesNobodyBehind) {
  Machine machine(builtTools());
  fs::copy_file(briefClient(), machine.helper() / "Contents/MacOS/Karno",
                fs::copy_options::overwrite_existing);

  const CommandResult burst =
      runCommand({withDisplay(), restartBurst(), machine.root(), std::to_string(kRestarts)}, kBurstLimit);

  EXPECT_EQ(burst.status, 0) << burst.output;
  std::cout << burst.output;
}

}  // namespace
}  // namespace karno::test
