#include "platform/cocoa/running_applications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <thread>
#include <vector>

#include "../../support/bundle_program.h"
#include "../../support/scoped_environment.h"
#include "../../support/started_task.h"
#include "../../support/temporary_folder.h"
#include "elements_are.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

using karno::test::ElementsAre;
using test::makeSleepingBundle;
using test::ScopedEnvironment;
using test::SleepingProcess;
using test::StartedTask;
using test::TemporaryFolder;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<int> processesOf(const std::string& identifier) {
  std::vector<int> processes;
  for (const RunningApplication& each : runningApplicationsWithIdentifier(identifier)) {
    processes.push_back(each.processIdentifier);
  }
  return processes;
}

TEST(RunningApplications, AreThoseOfTheBundlesWithTheIdentifier) {
  const TemporaryFolder folder;
  const std::string fileProvider = makeSleepingBundle(folder, "Karno", "test.vantul.Karno");
  const std::string fuse = makeSleepingBundle(folder, "Karno(Fuse)", "test.vantul.KarnoFuse");
  const SleepingProcess first(fileProvider);
  const SleepingProcess second(fileProvider);
  const SleepingProcess other(fuse);

  EXPECT_THAT(processesOf("test.vantul.Karno"),
              UnorderedElementsAre(first.identifier(), second.identifier()));
  EXPECT_THAT(processesOf("test.vantul.KarnoFuse"), ElementsAre(other.identifier()));
  EXPECT_THAT(processesOf("test.vantul.karno"), IsEmpty());
}

TEST(RunningApplications, CarryTheIdentifierOfTheirBundle) {
  const TemporaryFolder folder;
  const SleepingProcess process(makeSleepingBundle(folder, "Karno", "test.vantul.Own"));

  const auto found = host().workspace.runningApplications("test.vantul.Own");

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().processIdentifier, process.identifier());
  EXPECT_EQ(found.front().bundleIdentifier, "test.vantul.Own");
}

TEST(RunningApplications, InsideAnotherBundleBelongToTheInnerOne) {
  const TemporaryFolder folder;
  makeSleepingBundle(folder, "Outer", "test.vantul.Outer");
  const SleepingProcess process(
      makeSleepingBundle(folder, "Outer.app/Contents/Helpers/Inner", "test.vantul.Inner"));

  EXPECT_THAT(processesOf("test.vantul.Inner"), ElementsAre(process.identifier()));
  EXPECT_THAT(processesOf("test.vantul.Outer"), IsEmpty());
}

TEST(RunningApplications, AreThoseOfTheOwnMachine) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Machine");
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/srv/first");
  const SleepingProcess own(executable);
  root.set("/srv/second");
  const SleepingProcess neighbours(executable);
  root.set(std::nullopt);
  const SleepingProcess nobodys(executable);

  EXPECT_THAT(processesOf("test.vantul.Machine"), ElementsAre(nobodys.identifier()));
  root.set("/srv/first");
  EXPECT_THAT(processesOf("test.vantul.Machine"), ElementsAre(own.identifier()));
}

TEST(RunningApplications, EndWithTheirProcess) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Ends");

  { const SleepingProcess process(executable); }

  EXPECT_THAT(processesOf("test.vantul.Ends"), IsEmpty());
}

TEST(RunningApplications, AreNoZombies) {
  const TemporaryFolder folder;
  const SleepingProcess process(makeSleepingBundle(folder, "Karno", "test.vantul.Zombie"));

  process.becomeZombie();

  EXPECT_THAT(processesOf("test.vantul.Zombie"), IsEmpty());
}

// Whoever sees that a child has gone can rely on its end having been told.
TEST(RunningApplications, AmongTheOwnChildrenStayUntilTheirEndHasBeenHandled) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Handled");
  std::promise<void> told;
  std::promise<void> release;
  const auto child =
      host().tasks.launch({.executablePath = executable, .arguments = {"0"}}, [&](const TaskEnd&) {
        told.set_value();
        release.get_future().wait();
      });

  ASSERT_TRUE(child);
  told.get_future().wait();
  const std::vector<int> whileHandled = processesOf("test.vantul.Handled");
  release.set_value();
  while (!processesOf("test.vantul.Handled").empty()) std::this_thread::yield();

  EXPECT_THAT(whileHandled, ElementsAre(child.value()));
}

TEST(RunningApplications, HaveAnExecutableThatIsStillThere) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Deleted");
  const SleepingProcess process(executable);

  std::filesystem::remove(executable);

  EXPECT_THAT(processesOf("test.vantul.Deleted"), IsEmpty());
}

TEST(RunningApplications, MayHaveAnExecutableThatIsOnlyCalledDeleted) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Odd");
  std::filesystem::rename(executable, executable + " (deleted)");
  const SleepingProcess process(executable + " (deleted)");

  EXPECT_THAT(processesOf("test.vantul.Odd"), ElementsAre(process.identifier()));
}

TEST(RunningApplications, HaveAnInfoPlistWithAnIdentifier) {
  const TemporaryFolder folder;
  const SleepingProcess damaged(makeSleepingBundle(folder, "Damaged", "test.vantul.Bad"));
  const SleepingProcess missing(makeSleepingBundle(folder, "Missing", "test.vantul.Bad"));
  const SleepingProcess nameless(makeSleepingBundle(folder, "Nameless", "test.vantul.Bad"));
  const SleepingProcess number(makeSleepingBundle(folder, "Number", "test.vantul.Bad"));
  const SleepingProcess good(makeSleepingBundle(folder, "Good", "test.vantul.Bad"));

  folder.write("Damaged.app/Contents/Info.plist", "<plist><dict><key>CFBundleIdentifier</key>");
  std::filesystem::remove(folder / "Missing.app/Contents/Info.plist");
  folder.write("Nameless.app/Contents/Info.plist", test::propertyList(""));
  folder.write("Number.app/Contents/Info.plist",
               test::propertyList("<key>CFBundleIdentifier</key><integer>3</integer>"));

  EXPECT_THAT(processesOf("test.vantul.Bad"), ElementsAre(good.identifier()));
  EXPECT_THAT(processesOf(""), IsEmpty());
}

TEST(RunningApplications, HaveTheirExecutableInThePlaceForPrograms) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Place");
  std::filesystem::copy_file(executable, folder / "Karno.app/Contents/Run");
  std::filesystem::create_directories(folder / "Karno.app/Contents/MacOS/Tools");
  std::filesystem::copy_file(executable, folder / "Karno.app/Contents/MacOS/Tools/Run");
  std::filesystem::copy(folder / "Karno.app", folder / "Karno.bundle",
                        std::filesystem::copy_options::recursive);
  const SleepingProcess beside(folder / "Karno.app/Contents/Run");
  const SleepingProcess below(folder / "Karno.app/Contents/MacOS/Tools/Run");
  const SleepingProcess elsewhere(folder / "Karno.bundle/Contents/MacOS/Run");

  EXPECT_THAT(processesOf("test.vantul.Place"), IsEmpty());
}

TEST(RunningApplications, AreFoundWhileProcessesComeAndGo) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Busy");
  makeSleepingBundle(folder, "Other", "test.vantul.Other");
  const SleepingProcess process(executable);
  std::atomic<bool> goesOn = true;
  std::jthread coming([&] {
    while (goesOn) StartedTask(host().tasks, folder / "Other.app/Contents/MacOS/Run", {"0"}).waitForEnd();
  });

  std::vector<std::vector<int>> answers;
  for (int count = 0; count < 200; ++count) answers.push_back(processesOf("test.vantul.Busy"));
  goesOn = false;

  EXPECT_THAT(answers, testing::Each(ElementsAre(process.identifier())));
}

TEST(RunningApplications, CanBeAskedForByAnyThread) {
  const TemporaryFolder folder;
  const SleepingProcess process(makeSleepingBundle(folder, "Karno", "test.vantul.Thread"));
  std::vector<int> found;

  std::thread([&found] { found = processesOf("test.vantul.Thread"); }).join();

  EXPECT_THAT(found, ElementsAre(process.identifier()));
}

TEST(RunningApplications, AreKnownByTheirBundles) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.Bundles");
  const std::vector<std::string> before = bundlesOfRunningApplications();
  const SleepingProcess process(executable);

  const std::vector<std::string> during = bundlesOfRunningApplications();

  EXPECT_THAT(before, testing::Not(testing::Contains(folder / "Karno.app")));
  EXPECT_THAT(during, testing::Contains(folder / "Karno.app"));
}

TEST(RunningApplications, AreKnownByTheirBundlesOnlyWhileTheirExecutableIsThere) {
  const TemporaryFolder folder;
  const std::string executable = makeSleepingBundle(folder, "Karno", "test.vantul.DeletedBundle");
  const SleepingProcess process(executable);

  std::filesystem::remove(executable);

  EXPECT_THAT(bundlesOfRunningApplications(), testing::Not(testing::Contains(folder / "Karno.app")));
}

}  // namespace
}  // namespace karno::platform::cocoa
