#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "fake_platform.h"
#include "karnoctl/verbs/status_text.h"
#include "log/date_texts.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using platform::RunningProcess;
using test::FakePlatform;
using test::kStartOfTest;
using test::Terminal;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

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

constexpr const char* kRunBeginning = "===================================================";

// What the launcher 4242 has logged.
void log(FakePlatform& machine, const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages)
    text += stringForLogDate(kStartOfTest) + " (4242) [INFO] " + message + "\n";
  machine.files.addFile(test::kLogFile, text);
}

TEST(KarnoctlStatus, ShowsTheLauncherItsClientAndWhy) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 125), process(4250, 4242, kFileProviderClient, 4)});
  machine.withSystem("14.5", "arm64").withAdmin("USE_FILE_PROVIDER", "YES");
  log(machine, {"Karno Version: 3.2.0", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)",
                "Startup[LAUNCH] Launched Karno.app (pid: 4250)"});

  const int status = terminal.run({"status"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(),
            "Karno 3.2.0 runs, process 4242, up 2 h 5 min\n"
            "  state   runs, since 2024-03-05 14:07:09\n"
            "  bundle  /Applications/Karno.app, now of version 3.2.1\n"
            "  client  the File Provider build, process 4250, up 4 min\n"
            "          /Applications/Karno.app/Contents/Helpers/Karno.app\n"
            "  build   the File Provider build: the administrator has chosen it\n"
            "  log     2024-03-05 14:07:09:042+0100 (4242) [INFO] Karno Version: 3.2.0\n"
            "          2024-03-05 14:07:09:042+0100 (4242) [INFO] EmbeddedApp[CONFIGURE] Use File Provider = "
            "Yes (admin)\n"
            "          2024-03-05 14:07:09:042+0100 (4242) [INFO] Startup[LAUNCH] Launched Karno.app (pid: "
            "4250)\n");
}

TEST(KarnoctlStatus, SaysWhatIsNotKnownWithoutALog) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 0), process(5000, 1, kLauncher, 61),
                process(5001, 5000, kFuseClient, 60)});

  const int status = terminal.run({"status"});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(terminal.out(),
            "Karno 3.2.1 runs, process 4242, up 0 s\n"
            "  state   not known: the log tells nothing of it\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  none runs\n"
            "\n"
            "Karno 3.2.1 runs, process 5000, up 1 h 1 min\n"
            "  state   not known: the log tells nothing of it\n"
            "  bundle  /Applications/Karno.app\n"
            "  client  the FUSE build, process 5001, up 1 h 0 min\n"
            "          /Applications/Karno.app/Contents/Helpers/Karno(Fuse).app\n");
}

TEST(KarnoctlStatus, TellsTheWaitForMacFUSEAndWhatWouldDo) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2)});
  machine.withSystem("14.5", "arm64").withFuse("4.0.4");
  log(machine, {kRunBeginning, "Startup[FUSE] Waiting for Fuse to install"});

  EXPECT_EQ(terminal.run({"status"}), 0);

  EXPECT_THAT(terminal.out(), HasSubstr("  state   waits for macFUSE, since 2024-03-05 14:07:09\n"
                                        "          macFUSE 4.0.4 is there; 4.4.1 or later would do\n"));
  EXPECT_THAT(terminal.out(), HasSubstr("  client  none runs\n"));
}

TEST(KarnoctlStatus, TellsThatTheUserIsAsked) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2)});
  machine.withSystem("13.0", "arm64");
  log(machine, {kRunBeginning, "Main: Need to install Fuse"});

  EXPECT_EQ(terminal.run({"status"}), 0);

  EXPECT_THAT(terminal.out(),
              HasSubstr("  state   asks the user to install macFUSE, or a newer one, since 2024-03-05 "
                        "14:07:09\n"
                        "          no macFUSE is there, and none would do: one would on macOS 13.0.0 or "
                        "later, or on macOS 12 or earlier, and 13.0 counts as older than 13.0.0\n"));
}

TEST(KarnoctlStatus, SaysWhatTheNextStartRunsInstead) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2), process(4250, 4242, kFileProviderClient, 1)});
  machine.withAdmin("USE_FILE_PROVIDER", "NO");
  log(machine, {"Startup[LAUNCH] Launched Karno.app (pid: 4250)"});

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(),
              HasSubstr("  build   the File Provider build: the log does not tell why\n"
                        "  next    the next start runs the FUSE build: the administrator has chosen it\n"));
}

TEST(KarnoctlStatus, FindsAClientThatRunsAnotherProgramByItsParentAndTheLog) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2), process(4250, 4242, "/bin/bash", 1)});
  log(machine, {"Startup[LAUNCH] Launched Karno(Fuse).app (pid: 4250)"});

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(), HasSubstr("  client  the FUSE build, process 4250, up 1 min\n"
                                        "          /Applications/Karno.app/Contents/Helpers/Karno(Fuse).app\n"
                                        "          run by /bin/bash\n"));
}

TEST(KarnoctlStatus, LeavesNoTrace) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2)});

  terminal.run({"status"});

  EXPECT_FALSE(machine.files.fileExists(test::kLogFolder));
  EXPECT_TRUE(machine.settings().writes.empty());
  EXPECT_TRUE(machine.console().empty());
}

// Others write into the log, too: the title of a release, the name of a process.
TEST(KarnoctlStatus, ShowsNoControlCharacterOfTheLog) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 2)});
  log(machine, {"Karno Version: 1\033[31m", "Sparkle[UPDATE] Found: \033]0;x\a (2)"});

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(), Not(HasSubstr("\033")));
  EXPECT_THAT(terminal.out(), HasSubstr("Karno 1^[[31m runs"));
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
  log(machine, {"Startup[LAUNCH] Launched Karno.app (pid: 4250)",
                "Startup[TERMINATED] Child terminated (status:0, reason:1)"});

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(), HasSubstr("  client  none runs\n"));
}

TEST(KarnoctlStatus, DoesNotKnowWithoutALogWhetherAChildIsTheClient) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 1), process(4243, 4242, "/bin/sh", 1)});

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(),
              HasSubstr("  client  not known: the log does not name it among the launcher's children\n"
                        "          process 4243, /bin/sh\n"));
}

TEST(KarnoctlStatus, LeavesOutWhatIsNotKnown) {
  FakePlatform machine;
  Terminal terminal;
  RunningProcess launcher = process(4242, 1, kLauncher, 1);
  launcher.startDate = std::nullopt;
  run(machine, {launcher});
  machine.bundles.main().info.erase("CFBundleShortVersionString");

  terminal.run({"status"});

  EXPECT_THAT(terminal.out(), StartsWith("Karno (version unknown) runs, process 4242\n"));
}

TEST(KarnoctlStatus, SpeaksJsonToScripts) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {process(4242, 1, kLauncher, 125), process(4250, 4242, kFuseClient, 4)});
  machine.withSystem("14.5", "arm64").withFuse("4.4.1").withFirstStartup(false);
  log(machine, {"EmbeddedApp[CONFIGURE] Use File Provider = No (already using Fuse)",
                "Startup[LAUNCH] Launched Karno(Fuse).app (pid: 4250)",
                "Fuse[UPDATE] Prompting user - Fuse update is available"});

  const int status = terminal.run({"status", "--json"});

  EXPECT_EQ(status, 0);
  nlohmann::json json = nlohmann::json::parse(terminal.out());
  EXPECT_EQ(json["launchers"][0]["log"].size(), 3U);
  json["launchers"][0].erase("log");
  json["next"].erase("settings");
  EXPECT_EQ(json, nlohmann::json::parse(R"json({
    "version": 1,
    "launchers": [{
      "state": "asks", "since": "2024-03-05 14:07:09:042+0100", "doing": "whether to update macFUSE",
      "questions": ["update-fuse"], "quitReason": null,
      "process": 4242, "secondsUp": 7500.0, "runningVersion": null,
      "bundle": "/Applications/Karno.app", "bundleVersion": "3.2.1",
      "build": "fuse", "because": "already-using-fuse",
      "clients": [{
        "process": 4250, "secondsUp": 240.0, "build": "fuse",
        "bundle": "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app",
        "executable": "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)"
}]
}],
    "next": {
  "build" : "fuse", "because" : "already-using-fuse", "macFUSE" : "4.4.1", "macFUSENeeded" : "4.4.1"
}
})json"));
}

TEST(KarnoctlStatus, TellsScriptsThatNoLauncherRuns) {
  FakePlatform machine;
  Terminal terminal;
  run(machine, {});

  EXPECT_EQ(terminal.run({"status", "--json"}), 3);

  EXPECT_EQ(nlohmann::json::parse(terminal.out()),
            nlohmann::json::parse(R"({"version": 1, "launchers": [], "next": null})"));
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
