#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "../../support/forked_process.h"
#include "../../support/property_list_texts.h"
#include "../../support/standard_error_capture.h"
#include "../../support/temporary_folder.h"
#include "../../support/wait_until.h"
#include "platform/linux/files/property_list_file.h"
#include "platform/linux/preferences/defaults_file.h"
#include "platform/linux/preferences/file_lock.h"
#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using test::ForkedProcess;
using test::propertyList;
using test::StandardErrorCapture;
using test::TemporaryFolder;
using test::waitUntil;

constexpr const char* kLockedFile = "suite.plist";
constexpr milliseconds kAtOnce(0);

// Tried again at once, and not before the end.
constexpr DefaultsFileWaits kPersistent{.lockMax = kAtOnce,
                                        .retryLockMax = kAtOnce,
                                        .firstRetry = milliseconds(1),
                                        .longestRetry = milliseconds(2)};
constexpr DefaultsFileWaits kPatient{
    .lockMax = kAtOnce, .retryLockMax = kAtOnce, .firstRetry = hours(1), .longestRetry = hours(1)};

class LockedDefaultsFile : public testing::Test {
 protected:
  std::string path() const { return folder / kLockedFile; }
  std::string write(const std::string& elements) const {
    return folder.write(kLockedFile, propertyList(elements));
  }
  Value::Dictionary stored() const {
    const Result<Value::Dictionary> values = readDictionary(path());
    return values ? values.value() : Value::Dictionary();
  }
  std::string lockedLine() const {
    return "UserDefaults: " + path() + " is locked by another process; what is set here is stored later\n";
  }
  std::string storedLine() const { return "UserDefaults: all that was set is now in " + path() + "\n"; }

  // As another process does; a descriptor of its own is all that it takes.
  void lock() {
    otherProcess = std::make_unique<FileLock>(path() + ".lock");
    ASSERT_EQ(otherProcess->lock(std::chrono::seconds(10)), 0);
  }
  void unlock() { otherProcess.reset(); }

  TemporaryFolder folder;
  std::unique_ptr<FileLock> otherProcess;
  Notices notices{[](Notices::Level, std::string_view line) { writeConsoleLine(line); }};
};

TEST_F(LockedDefaultsFile, IsReadAllTheSame) {
  write("<key>key</key><true/>");
  DefaultsFile file(path(), notices, kPatient);
  lock();

  EXPECT_EQ(file.valueForKey("key"), Value(true));
  write("<key>key</key><false/>");
  EXPECT_EQ(file.valueForKey("key"), Value(false));
}

// The write would wait for an hour, so a read that waited for it would never come back.
TEST_F(LockedDefaultsFile, IsReadWhileAnotherThreadWaitsForTheLock) {
  const StandardErrorCapture console;
  write("<key>kept</key><true/>");
  DefaultsFile file(path(), notices, {.lockMax = hours(1)});
  lock();
  std::jthread writer([&] { file.setValue(Value(true), "new"); });

  const bool wasSeen = waitUntil([&] { return file.valueForKey("new") == Value(true); });

  EXPECT_TRUE(wasSeen);
  EXPECT_EQ(file.valueForKey("kept"), Value(true));
  EXPECT_EQ(stored(), (Value::Dictionary{{"kept", true}}));
  unlock();
  writer.join();
  EXPECT_EQ(stored(), (Value::Dictionary{{"kept", true}, {"new", true}}));
  EXPECT_EQ(console.text(), "");
}

TEST_F(LockedDefaultsFile, HoldsUpWhoSetsAValueForASecondAtMost) {
  EXPECT_EQ(DefaultsFileWaits().lockMax, std::chrono::seconds(1));
}

TEST_F(LockedDefaultsFile, ReadsBackInThisProcessWhatItDoesNotTake) {
  const StandardErrorCapture console;
  write("<key>changed</key><true/><key>removed</key><true/>");
  DefaultsFile file(path(), notices, kPatient);
  lock();

  file.setValue(Value(false), "changed");
  file.setValue(std::nullopt, "removed");

  EXPECT_EQ(file.valueForKey("changed"), Value(false));
  EXPECT_EQ(file.valueForKey("removed"), std::nullopt);
  EXPECT_EQ(stored(), (Value::Dictionary{{"changed", true}, {"removed", true}}));
}

TEST_F(LockedDefaultsFile, HasWhatWasSetOnceTheLockIsFree) {
  const StandardErrorCapture console;
  DefaultsFile file(path(), notices, kPersistent);
  lock();
  file.setValue(Value(1), "key");
  file.setValue(Value(2), "key");

  unlock();

  EXPECT_TRUE(waitUntil([this] { return stored() == Value::Dictionary{{"key", 2}}; }));
}

TEST_F(LockedDefaultsFile, KeepsWhatTheHolderOfTheLockStoredMeanwhile) {
  const StandardErrorCapture console;
  write("<key>removed</key><true/>");
  DefaultsFile file(path(), notices, kPersistent);
  lock();
  file.setValue(Value("ours"), "key");
  file.setValue(std::nullopt, "removed");

  write(
      "<key>key</key><string>theirs</string><key>removed</key><true/><key>other</key><string>theirs</"
      "string>");
  unlock();

  EXPECT_TRUE(waitUntil([this] {
    return stored() == Value::Dictionary{{"key", "ours"}, {"other", "theirs"}};
  }));
}

TEST_F(LockedDefaultsFile, IsFollowedAgainOnceAllIsStored) {
  const StandardErrorCapture console;
  DefaultsFile file(path(), notices, kPersistent);
  lock();
  file.setValue(Value(1), "key");
  unlock();
  ASSERT_TRUE(waitUntil([&] { return console.text() == lockedLine() + storedLine(); }));

  write("<key>key</key><integer>3</integer>");

  EXPECT_EQ(file.valueForKey("key"), Value(3));
}

TEST_F(LockedDefaultsFile, IsToldOncePerStretch) {
  const StandardErrorCapture console;
  DefaultsFile file(path(), notices, kPersistent);
  lock();
  file.setValue(Value(1), "first");
  file.setValue(Value(2), "second");
  EXPECT_EQ(console.text(), lockedLine());
  unlock();
  ASSERT_TRUE(waitUntil([&] { return console.text() == lockedLine() + storedLine(); })) << console.text();

  lock();
  file.setValue(Value(3), "third");
  EXPECT_EQ(console.text(), lockedLine() + storedLine() + lockedLine());
  unlock();

  EXPECT_TRUE(waitUntil([&] {
    return console.text() == lockedLine() + storedLine() + lockedLine() + storedLine();
  })) << console.text();
}

TEST_F(LockedDefaultsFile, TakesWithTheNextValueWhatWasSetBefore) {
  const StandardErrorCapture console;
  DefaultsFile file(path(), notices, kPatient);
  lock();
  file.setValue(Value(1), "early");
  unlock();

  file.setValue(Value(2), "late");

  EXPECT_EQ(stored(), (Value::Dictionary{{"early", 1}, {"late", 2}}));
  EXPECT_EQ(console.text(), lockedLine() + storedLine());
}

// The second value would wait for an hour if anything was waited for while the first one is still tried.
TEST_F(LockedDefaultsFile, IsNotWaitedForBesideTheTriesInTheBackground) {
  const StandardErrorCapture console;
  std::filesystem::create_directory(path() + ".lock");
  DefaultsFile file(path(), notices, {.lockMax = hours(1), .retryLockMax = kAtOnce, .firstRetry = hours(1)});
  file.setValue(Value(1), "early");
  std::filesystem::remove(path() + ".lock");
  lock();

  file.setValue(Value(2), "late");

  EXPECT_EQ(file.valueForKey("late"), Value(2));
  EXPECT_EQ(stored(), Value::Dictionary());
}

TEST_F(LockedDefaultsFile, HasWhatWasSetAfterSynchronizeWhenTheLockIsFree) {
  const StandardErrorCapture console;
  DefaultsFile file(path(), notices, kPatient);
  lock();
  file.setValue(Value(1), "key");
  unlock();

  file.synchronize();

  EXPECT_EQ(stored(), (Value::Dictionary{{"key", 1}}));
}

TEST_F(LockedDefaultsFile, HasWhatWasSetWhenTheLockIsFreeAtTheEndOfItsOwner) {
  const StandardErrorCapture console;
  auto file = std::make_unique<DefaultsFile>(path(), notices, kPatient);
  lock();
  file->setValue(Value(1), "key");
  unlock();

  file.reset();

  EXPECT_EQ(stored(), (Value::Dictionary{{"key", 1}}));
}

TEST_F(LockedDefaultsFile, HasWhatWasSetWhenTheLockIsFreeAtTheEndOfTheProcess) {
  const StandardErrorCapture console;

  ForkedProcess process([this]() -> int {
    // Nobody destroys it, as nobody destroys the launcher's.
    const auto file = std::make_shared<DefaultsFile>(path(), notices, kPatient);
    lock();
    file->setValue(Value(1), "key");
    unlock();
    std::exit(42);
  });

  EXPECT_EQ(process.exitStatus(), 42);
  EXPECT_EQ(stored(), (Value::Dictionary{{"key", 1}}));
  EXPECT_EQ(console.text(), lockedLine() + storedLine());
}

TEST_F(LockedDefaultsFile, TellsAtTheEndWhatWasNotStored) {
  const StandardErrorCapture console;
  auto file = std::make_unique<DefaultsFile>(path(), notices, kPatient);
  lock();
  file->setValue(Value(1), "first");
  file->setValue(Value(2), "second");

  file.reset();

  EXPECT_EQ(console.text(),
            lockedLine() + "UserDefaults: " + path() + " is locked to the end; not stored: first, second\n");
  EXPECT_EQ(stored(), Value::Dictionary());
}

TEST_F(LockedDefaultsFile, LosesNoValueOfThreadsWhileTheLockComesAndGoes) {
  const StandardErrorCapture console;
  auto file = std::make_unique<DefaultsFile>(path(), notices, kPersistent);
  {
    std::vector<std::jthread> writers;
    for (int thread = 0; thread < 4; ++thread) {
      writers.emplace_back([&file, thread] {
        for (int number = 0; number < 25; ++number) {
          file->setValue(Value(number), std::to_string(thread * 100 + number));
        }
      });
    }
    for (int round = 0; round < 20; ++round) {
      lock();
      unlock();
    }
  }

  file.reset();

  EXPECT_EQ(stored().size(), 100U);
}

// Whatever kept it from being stored, it is stored once that is gone.
TEST_F(LockedDefaultsFile, IsStoredOnceAnotherObstacleIsGone) {
  const StandardErrorCapture console;
  const std::string obstacle = folder.write("folder", "a file where a folder should be");
  DefaultsFile file(obstacle + "/" + kLockedFile, notices, kPersistent);
  file.setValue(Value(1), "key");

  std::filesystem::remove(obstacle);

  EXPECT_TRUE(waitUntil([&] {
    const Result<Value::Dictionary> values = readDictionary(obstacle + "/" + kLockedFile);
    return values && values.value() == Value::Dictionary{{"key", 1}};
  }));
}

}  // namespace
}  // namespace karno::platform
