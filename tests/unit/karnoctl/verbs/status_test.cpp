#include <gtest/gtest.h>

#include "fake_platform.h"
#include "karnoctl/verbs/status_text.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using platform::RunningProcess;
using test::FakePlatform;
using test::kStartOfTest;
using test::Terminal;

constexpr const char* kLauncher = "/Applications/Karno.app/Contents/MacOS/Karno";
constexpr const char* kFileProviderClient =
    "/Applications/Karno.app/Contents/Helpers/Karno.app/Contents/MacOS/Karno";
constexpr const char* kFuseClient =
    "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)";

RunningProcess process(std::int32_t identifier, std::int32_t parent, const char* executable, int minutesUp) {
  return {.processIdentifier = identifier,
          .parentProcessIdentifier = parent,
          .executablePath = executable,
          .startDate = kStartOfTest - std::chrono::minutes(minutesUp)};
}

// These processes and no others.
void run(FakePlatform& machine, const std::vector<RunningProcess>& processes) {
  machine.processTable.remove(test::FakeProcessTable::kLauncher);
  for (const RunningProcess& process : processes) {
    machine.processTable.add(process.processIdentifier, {.parent = process.parentProcessIdentifier,
                                                         .executablePath = process.executablePath,
                                                         .startDate = process.startDate});
  }
}

TEST(KarnoctlStatus, ShowsTheLauncherAndItsClient) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 125), process(4250, 4242, kFileProviderClient, 4)});

  const int status = terminal.run({"status"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(),
            "Karno 3.2.1 runs, process 4242, up 2 h 5 min\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  the File Provider build, process 4250, up 4 min\n"
            "          /Applications/Karno.app/Contents/Helpers/Karno.app\n");
}

TEST(KarnoctlStatus, ShowsTheFuseBuildAndALauncherWithoutClient) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 0), process(5000, 1, kLauncher, 61),
                process(5001, 5000, kFuseClient, 60)});

  const int status = terminal.run({"status"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(),
            "Karno 3.2.1 runs, process 4242, up 0 s\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  none runs\n"
            "\n"
            "Karno 3.2.1 runs, process 5000, up 1 h 1 min\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  the FUSE build, process 5001, up 1 h 0 min\n"
            "          /Applications/Karno.app/Contents/Helpers/Karno(Fuse).app\n");
}

TEST(KarnoctlStatus, SaysThatNoLauncherRuns) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(10, 1, "/usr/bin/Karno", 1),
                process(11, 1, "/Applications/Karno.app/Contents/MacOS/karnoctl", 1),
                process(12, 1, "/Applications/Karno.app/Contents/MacOS/deeper/Karno", 1),
                process(13, 1, kFileProviderClient, 1),
                process(14, 1, "/Applications/Gone.app/Contents/MacOS/Karno", 1)});

  const int status = terminal.run({"status"});

  EXPECT_EQ(status, 3);
  EXPECT_EQ(terminal.out(), "No Karno launcher runs.\n");
}

TEST(KarnoctlStatus, LeavesOutChildrenThatAreNoClients) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 1), process(4243, 4242, "/bin/sh", 1)});

  terminal.run({"status"});

  EXPECT_EQ(terminal.out(),
            "Karno 3.2.1 runs, process 4242, up 1 min\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  none runs\n");
}

TEST(KarnoctlStatus, LeavesOutWhatIsNotKnown) {
  FakePlatform machine;
  Terminal terminal;
  RunningProcess launcher = process(4242, 1, kLauncher, 1);
  launcher.startDate = std::nullopt;
  run(machine, {launcher});
  machine.bundles.main().info.erase("CFBundleShortVersionString");

  terminal.run({"status"});

  EXPECT_EQ(terminal.out(),
            "Karno (version unknown) runs, process 4242\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  none runs\n");
}

TEST(DurationText, HasTheTwoLargestUnits) {
  EXPECT_EQ(durationText(0.0), "0 s");
  EXPECT_EQ(durationText(59.9), "59 s");
  EXPECT_EQ(durationText(60.0), "1 min");
  EXPECT_EQ(durationText(3599.0), "59 min");
  EXPECT_EQ(durationText(3600.0), "1 h 0 min");
  EXPECT_EQ(durationText(7500.0), "2 h 5 min");
  EXPECT_EQ(durationText(86399.0), "23 h 59 min");
  EXPECT_EQ(durationText(86400.0), "1 d 0 h");
  EXPECT_EQ(durationText(1'051'200.0), "12 d 4 h");
}

// The clock of the computer may have been set back since the start.
TEST(DurationText, IsNeverNegative) { EXPECT_EQ(durationText(-3600.0), "0 s"); }

}  // namespace
}  // namespace karno::karnoctl
