#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <regex>
#include <sstream>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr std::chrono::seconds kToolLimit{30};

constexpr const char* kLocale = "LC_ALL=C.UTF-8";

// karnoctl's command line on a machine whether or not its launcher runs.
std::vector<std::string> karnoctlCommand(const Machine& machine, const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"/usr/bin/env", "HOME=" + machine.home().string(),
                                   "KARNO_MACHINE_ROOT=" + machine.root().string(), kLocale,
                                   machine.bundle() / "Contents/MacOS/karnoctl"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

CommandResult karnoctl(const Machine& machine, const std::vector<std::string>& arguments) {
  return runCommand(karnoctlCommand(machine, arguments), kToolLimit);
}

std::string contentOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

void append(const fs::path& file, const std::string& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::app) << text;
}

// The launcher may have been up for a second or two by now.
std::string withoutTimes(const std::string& text) {
  const std::string timeless = std::regex_replace(text, std::regex(R"(up \d+ s\n)"), "up N s\n");
  return std::regex_replace(timeless, std::regex(R"(since [-0-9]+ [:0-9]+)"), "since TIME");
}

// The file, which is what karnoctl reads, has a line a moment after the console.
bool isStartInTheFile(const Machine& machine) {
  return machine.waitUntil([&] { return testing::Value(machine.log(), testing::Contains(kStarted)); },
                           kToolLimit);
}

TEST(KarnoctlStatus, ShowsTheRealLauncherAndItsClient) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(isStartInTheFile(machine)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  const auto clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));
  ASSERT_THAT(clients, SizeIs(1));

  const CommandResult result = machine.in({"karnoctl", "status"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(withoutTimes(result.output),
              StartsWith(fmt::format("Karno " KARNO_VERSION " runs, process {}, up N s\n"
                                     "  state   runs, since TIME\n"
                                     "  bundle  {}\n"
                                     "  client  the File Provider build, process {}, up N s\n"
                                     "          {}\n"
                                     "  build   the File Provider build: it was the first start\n"
                                     "  log     ",
                                     launchers[0], machine.bundle().string(), clients[0],
                                     machine.helper().string())));
}

TEST(KarnoctlStatus, FindsAClientThatIsAScript) {
  Machine machine(builtTools());
  const fs::path program = machine.helper() / "Contents/MacOS/Karno";
  fs::remove(program);
  std::ofstream(program) << "#!/bin/bash\nread -r never <> <(:)\n";
  fs::permissions(program, fs::perms::owner_all);
  machine.start();
  ASSERT_TRUE(isStartInTheFile(machine)) << machine.consoleText();

  const CommandResult result = machine.in({"karnoctl", "status"});

  EXPECT_THAT(withoutTimes(result.output), HasSubstr("  client  the File Provider build, process "));
  EXPECT_THAT(result.output, HasSubstr("          " + machine.helper().string() + "\n          run by "));
}

TEST(KarnoctlStatus, TellsThatTheUserIsAskedToInstallMacFUSE) {
  Machine machine(builtTools(), {"--macos", "14.5", "--cpu", "arm64", "--fuse", "4.0.4", "--admin",
                                 "USE_FILE_PROVIDER=NO"});
  machine.start();
  ASSERT_TRUE(machine.waitForMessage("INFO Main: Need to install Fuse")) << machine.consoleText();

  const auto isAsked = [&] {
    return machine.in({"karnoctl", "status"}).output.find("  state   asks the user to install macFUSE") !=
           std::string::npos;
  };

  EXPECT_TRUE(machine.waitUntil(isAsked, kToolLimit)) << machine.in({"karnoctl", "status"}).output;
  EXPECT_THAT(machine.in({"karnoctl", "status"}).output,
              HasSubstr("          macFUSE 4.0.4 is there; 4.4.1 or later would do\n"));
}

TEST(KarnoctlStatus, FindsNoLauncherOnAMachineThatIsOff) {
  const Machine machine(builtTools());

  const CommandResult result = karnoctl(machine, {"status"});

  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.output, "No Karno launcher runs.\n");
}

TEST(KarnoctlDiagnose, NamesTheMissingMacFUSE) {
  Machine machine(builtTools(), {"--macos", "14.5", "--cpu", "arm64", "--admin", "USE_FILE_PROVIDER=NO"});
  machine.start();
  ASSERT_TRUE(machine.waitForMessage("INFO Main: Need to install Fuse")) << machine.consoleText();

  const auto isFound = [&] { return machine.in({"karnoctl", "diagnose"}).status == 1; };

  EXPECT_TRUE(machine.waitUntil(isFound, kToolLimit)) << machine.in({"karnoctl", "diagnose"}).output;
  EXPECT_THAT(
      machine.in({"karnoctl", "diagnose"}).output,
      HasSubstr("\n\nThe chosen build needs macFUSE, which is not installed.\n(macFUSE 4.4.1 or later "
                "would do, the administrator has chosen this build)\n    20"));
}

TEST(KarnoctlDiagnose, FindsNothingWrongWithAHealthySession) {
  Machine machine(builtTools());
  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);

  const CommandResult result = karnoctl(machine, {"diagnose"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("Karno " KARNO_VERSION ", process "));
  EXPECT_THAT(result.output, EndsWith(", has quit: User selected quit\nThe log shows nothing wrong.\n"));
}

TEST(KarnoctlLog, ShowsTheLinesThatTheLauncherWrote) {
  Machine machine(builtTools());
  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);

  const CommandResult result = karnoctl(machine, {"log", "--lines", "all"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, contentOf(machine.logFile()));
  EXPECT_THAT(result.output, HasSubstr("[INFO] AppDelegate:: Terminating\n"));
}

TEST(KarnoctlLog, FollowsTheLauncherUntilItIsInterrupted) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const fs::path seen = machine.root() / "seen.txt";
  Subprocess follower(karnoctlCommand(machine, {"log", "--follow", "--lines", "1"}), seen);
  ASSERT_TRUE(machine.waitUntil([&] { return !contentOf(seen).empty(); }, kToolLimit));

  machine.in({"karnoctl", "post", "user-selected-quit"});
  ASSERT_EQ(machine.waitForEnd(), 0);

  EXPECT_TRUE(machine.waitUntil(
      [&] { return contentOf(seen).find("AppDelegate:: Terminating\n") != std::string::npos; }, kToolLimit))
      << contentOf(seen);
  EXPECT_THAT(contentOf(seen), HasSubstr("[INFO] Notify[LISTEN] Received 'user-selected-quit'\n"));
  follower.signal(SIGINT);
  EXPECT_EQ(follower.waitForEnd(kToolLimit), 130);
}

TEST(KarnoctlLog, FollowsThroughARotation) {
  const Machine machine(builtTools());
  append(machine.logFile(), "one\n");
  const fs::path seen = machine.root() / "seen.txt";
  const Subprocess follower(karnoctlCommand(machine, {"log", "--follow"}), seen);
  ASSERT_TRUE(machine.waitUntil([&] { return contentOf(seen) == "one\n"; }, kToolLimit)) << contentOf(seen);

  append(machine.logFile(), "two\n");
  fs::rename(machine.logFile(), machine.logFile().parent_path() / "karno-wrapper.old.log");
  append(machine.logFile(), "three\n");

  EXPECT_TRUE(machine.waitUntil([&] { return contentOf(seen) == "one\ntwo\nthree\n"; }, kToolLimit))
      << contentOf(seen);
}

// As "karnoctl log | head -1" does.
TEST(KarnoctlLog, EndsQuietlyWithTheReaderOfItsOutput) {
  const Machine machine(builtTools());
  append(machine.logFile(), std::string(1'000'000, '\n'));
  const std::string tool = machine.bundle() / "Contents/MacOS/karnoctl";

  const CommandResult result =
      runCommand({"/usr/bin/env", "HOME=" + machine.home().string(), "/bin/bash", "-c",
                  "'" + tool + "' log --lines all | head -1; echo ${PIPESTATUS[0]}"},
                 kToolLimit);

  EXPECT_EQ(result.output, "\n141\n");
}

TEST(KarnoctlQuit, WaitsForTheLaunchersEnd) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const CommandResult result = machine.in({"karnoctl", "quit"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "The Karno launcher has quit.\n");
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_EQ(karnoctl(machine, {"quit"}).status, 3);
}

TEST(KarnoctlQuit, SaysWhatHoldsTheLauncherUp) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  machine.in({"karnoctl", "post", "app-is-terminating-abnormally", "--reason", "a test"});
  ASSERT_TRUE(machine.waitForMessage(
      "*** ERROR *** Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=a test)"));

  const CommandResult result = machine.in({"karnoctl", "quit", "--wait", "2"});

  EXPECT_EQ(result.status, 4);
  EXPECT_THAT(
      result.output,
      HasSubstr("still runs after 2 s; state: quits: User selected quit, once the user has answered: it asks "
                "whether to start the client again after it has failed\n"));
}

// What a shell's line prints in a machine's home folder, with its exit status.
CommandResult shell(const Machine& machine, const std::string& line) {
  return runCommand(
      {"/usr/bin/env", "HOME=" + machine.home().string(), "KARNO_MACHINE_ROOT=" + machine.root().string(),
       kLocale, "TOOL=" + (machine.bundle() / "Contents/MacOS/karnoctl").string(), "/bin/bash", "-c",
       "cd && " + line},
      kToolLimit);
}

TEST(KarnoctlReport, IsAnArchiveThatOnlyTheUserMayRead) {
  const Machine machine(builtTools());
  append(machine.logFile(), "a line about " + machine.home().string() + "/x\n");
  append(machine.home() / "Library/Logs/DiagnosticReports/Karno-1.ips", "it crashed\n");

  const CommandResult result = shell(machine, "\"$TOOL\" report --output report.tar.gz");

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(fs::status(machine.home() / "report.tar.gz").permissions(), fs::perms(0600));
  EXPECT_EQ(shell(machine, "tar -xzf report.tar.gz && cat karno-report/karno-wrapper.log").output,
            "a line about ~/x\n");
  EXPECT_EQ(shell(machine, "cat karno-report/crashes/Karno-1.ips").output, "it crashed\n");
  EXPECT_THAT(shell(machine, "cat karno-report/version.txt").output,
              StartsWith("karnoctl " KARNO_VERSION "\n"));
  EXPECT_THAT(shell(machine, "cat karno-report/status.txt").output, StartsWith("No Karno launcher runs.\n"));
  EXPECT_THAT(shell(machine, "cat karno-report/explain.txt").output, StartsWith("The next start runs "));
  EXPECT_THAT(shell(machine, "cat karno-report/self-check.txt").output, HasSubstr("(exit status "));
  EXPECT_EQ(shell(machine, "grep -r \"$HOME\" karno-report").output, "");
  EXPECT_EQ(shell(machine, "ls -A | grep partial").output, "");
}

TEST(KarnoctlReport, LeavesNothingWhereTheArchiveDoesNotFit) {
  const Machine machine(builtTools());
  append(machine.logFile(), std::string(100'000, 'x'));

  const CommandResult result = shell(machine, "ulimit -f 20; \"$TOOL\" report --output report.tar.gz 2>&1");

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "karnoctl: cannot write '" + machine.home().string() + "/report.tar.gz': File too large\n");
  EXPECT_EQ(shell(machine, "ls -A | grep report").output, "");
}

TEST(KarnoctlOutput, FailsInOneLineWhereItCannotBeWritten) {
  const Machine machine(builtTools());
  append(machine.logFile(), "one\n");

  for (const char* const verb :
       {"status", "log", "explain", "self-check", "help", "--version", "quit --help"}) {
    const std::string command = "\"$TOOL\" " + std::string(verb);
    EXPECT_EQ(shell(machine, command + " 2>&1 >/dev/full; echo $?").output,
              "karnoctl: cannot write the output\n1\n")
        << verb;
    EXPECT_EQ(shell(machine, "{ " + command + " 2>&3 >&-; } 3>&1; echo $?").output,
              "karnoctl: cannot write the output\n1\n")
        << verb;
  }
}

TEST(KarnoctlExplain, ForetellsTheNextStartAndLeavesNoTrace) {
  Machine machine(builtTools(), {"--macos", "14.5", "--cpu", "arm64", "--admin", "USE_FILE_PROVIDER=YES"});

  const CommandResult result = karnoctl(machine, {"explain"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(
      result.output,
      StartsWith("The next start runs the File Provider build, Karno.app: the administrator has chosen "
                 "it.\n"
                 "The system check passes: macOS has File Provider from version 12.3 on.\n"
                 "\n"
                 "Choice of the build (\">\" decides)\n"
                 "  > administrator   USE_FILE_PROVIDER = \"YES\": on\n"));
  EXPECT_THAT(result.output, HasSubstr("  USE_FILE_PROVIDER        \"YES\": on        managed preferences "
                                       "(it.vantul.KarnoAdmin)\n"));
  EXPECT_FALSE(fs::exists(machine.logFile().parent_path()));
  EXPECT_FALSE(fs::exists(machine.home() / "Library/Preferences/it.vantul.karno.plist"));

  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), Contains("INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)"));
}

TEST(KarnoctlExplain, ForetellsTheQuestionWhetherToMove) {
  const Machine machine(builtTools(), {"--into", "Downloads"});
  const fs::path bundle = machine.home() / "Downloads/Karno.app";

  const CommandResult result = runCommand(
      {"/usr/bin/env", "HOME=" + machine.home().string(), "KARNO_MACHINE_ROOT=" + machine.root().string(),
       (bundle / "Contents/MacOS/karnoctl").string(), "explain"},
      kToolLimit);

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("\nMove\n  launcher   " + bundle.string() +
                                       "\n  question   asked: it is in no Applications folder, but in "
                                       "Downloads\n  goes to    " +
                                       machine.root().string() + "/Applications/Karno.app\n\nUpdates\n"));
}

TEST(KarnoctlExplain, ReadsTheFactsOfTheMachine) {
  const Machine machine(builtTools(), {"--macos", "12.2.1", "--cpu", "x86_64", "--fuse", "3.11.2"});

  const CommandResult result = karnoctl(machine, {"explain"});

  EXPECT_THAT(result.output,
              HasSubstr("The system check passes, by macFUSE: macOS is older than 12.3, so File "
                        "Provider cannot be used.\n"));
  EXPECT_THAT(result.output,
              HasSubstr("  processor  x86_64\n  macFUSE    3.11.2, read from " + machine.root().string() +
                        "/Library/Frameworks/macFUSE.framework/Resources/Info.plist\n"));
  EXPECT_THAT(result.output, HasSubstr("  ✓ x86_64  3.11.2+   any macOS\n"));
}

// As an administrator links it into /usr/local/bin.
TEST(KarnoctlExplain, KnowsItsBundleWhenItIsStartedByALink) {
  const Machine machine(builtTools());
  const fs::path link = machine.root() / "usr/local/bin/karnoctl";
  fs::create_directories(link.parent_path());
  fs::create_symlink(machine.bundle() / "Contents/MacOS/karnoctl", link);
  const std::string expected = karnoctl(machine, {"explain"}).output;

  const CommandResult result =
      runCommand({"/usr/bin/env", "HOME=" + machine.home().string(),
                  "KARNO_MACHINE_ROOT=" + machine.root().string(), kLocale, link.string(), "explain"},
                 kToolLimit);

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, expected);
  EXPECT_THAT(result.output, Not(HasSubstr("in the launcher's bundle")));
}

// What shells and "man" are pointed to.
TEST(KarnoctlBundle, HoldsTheManualPageAndTheCompletions) {
  const fs::path resources = builtTools().bundle / "Contents/Resources";

  EXPECT_THAT(contentOf(resources / "man/man1/karnoctl.1"), HasSubstr("\n.Dt KARNOCTL 1\n"));
  EXPECT_THAT(contentOf(resources / "completions/bash/karnoctl"),
              HasSubstr("complete -F _karnoctl karnoctl\n"));
  EXPECT_THAT(contentOf(resources / "completions/zsh/_karnoctl"), StartsWith("#compdef karnoctl\n"));
}

}  // namespace
}  // namespace karno::test
