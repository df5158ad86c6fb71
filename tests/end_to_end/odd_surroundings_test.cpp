#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::SizeIs;

// "Buero" with its umlaut as ISO 8859-1 has it, which is not UTF-8.
constexpr const char* kOldName = "B\xFCro";
constexpr const char* kQuitting = "KARNO_CLIENT_SCRIPT=1:user-selected-quit";

// The folder in which the processes of one test run.
class WorkingFolder {
 public:
  explicit WorkingFolder(const fs::path& folder) {
    fs::create_directories(folder);
    fs::current_path(folder);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { fs::current_path(before_); }

 private:
  const fs::path before_ = fs::current_path();
};

std::string environmentOf(int process) {
  std::ostringstream text;
  text << std::ifstream("/proc/" + std::to_string(process) + "/environ", std::ios::binary).rdbuf();
  return text.str();
}

TEST(OddSurroundings, AVariableThatIsNotUTF8ReachesTheClientAsItIs) {
  Machine machine(builtTools());
  machine.start({"--env", "KARNO_ODD=a\xFFz"});
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const auto clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");

  ASSERT_THAT(clients, SizeIs(1));
  EXPECT_THAT(environmentOf(clients[0]), HasSubstr(std::string("KARNO_ODD=a\xFFz\0", 14)));
  machine.in({"karnoctl", "post", "user-selected-quit"});
  EXPECT_EQ(machine.waitForEnd(), 0);
}

TEST(OddSurroundings, TheClientHasTheUsersComposeFileOrNone) {
  using Options = std::vector<std::string>;
  for (const std::string file : {"", "/Users/Shared/Compose"}) {
    Machine machine(builtTools());
    machine.start(file.empty() ? Options() : Options{"--env", "XCOMPOSEFILE=" + file});
    ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

    const auto clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");

    ASSERT_THAT(clients, SizeIs(1));
    const bool isThere = environmentOf(clients[0]).find("XCOMPOSEFILE=" + file) != std::string::npos;
    EXPECT_EQ(isThere, !file.empty());
    machine.in({"karnoctl", "post", "user-selected-quit"});
    EXPECT_EQ(machine.waitForEnd(), 0);
  }
}

// These mean something to the libraries that the launcher is made of.
TEST(OddSurroundings, KnownVariablesThatAreNotUTF8AreNoReasonToStayAway) {
  Machine machine(builtTools());

  machine.start({"--env", kQuitting,
                 "--env", "LANG=\xFF",
                 "--env", "LC_ALL=\xFF",
                 "--env", "LANGUAGE=\xFF",
                 "--env", "TZ=\xFF",
                 "--env", "USER=\xFF",
                 "--env", "LOGNAME=\xFF",
                 "--env", "PWD=/\xFF",
                 "--env", "XDG_DATA_HOME=/\xFF",
                 "--env", "GNUSTEP_USER_ROOT=/\xFF"});

  EXPECT_EQ(machine.waitForEnd(), 0) << machine.consoleText();
  EXPECT_THAT(machine.console(), Contains(kTerminating));
}

TEST(OddSurroundings, AnArgumentThatIsNotUTF8IsNoReasonToStayAway) {
  Machine machine(builtTools());

  machine.start({"--env", kQuitting, "--", "a\xFFz"});

  EXPECT_EQ(machine.waitForEnd(), 0) << machine.consoleText();
  EXPECT_THAT(machine.console(), Contains(kTerminating));
}

TEST(OddSurroundings, StartsFromABundleWhosePathIsNotUTF8) {
  Machine machine(builtTools(), {"--into", std::string("Applications/") + kOldName});

  machine.start({"--env", kQuitting});

  EXPECT_EQ(machine.waitForEnd(), 0) << machine.consoleText();
  EXPECT_THAT(machine.console(), Contains(kTerminating));
}

TEST(OddSurroundings, StartsForAUserWhoseHomeIsNotUTF8) {
  Machine machine(builtTools(), {"--user", kOldName});

  machine.start({"--env", kQuitting});

  EXPECT_EQ(machine.waitForEnd(), 0) << machine.consoleText();
  EXPECT_TRUE(
      fs::exists(machine.root() / "Users" / kOldName / "Library/Logs/Karno for macOS/karno-wrapper.log"));
}

TEST(OddSurroundings, StartsInAWorkingFolderWhoseNameIsNotUTF8) {
  Machine machine(builtTools());
  const WorkingFolder folder(machine.root() / "tmp" / kOldName);

  machine.start({"--env", kQuitting});

  EXPECT_EQ(machine.waitForEnd(), 0) << machine.consoleText();
  EXPECT_THAT(machine.console(), Contains(kTerminating));
}

TEST(OddSurroundings, KarnoctlPostsAReasonThatIsNotUTF8) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const CommandResult posted =
      machine.in({"karnoctl", "post", "app-is-terminating-abnormally", "--reason", "a\xFFz"});

  EXPECT_EQ(posted.status, 0) << posted.output;
  EXPECT_TRUE(
      machine.waitUntil([&] { return machine.consoleText().find("a\xEF\xBF\xBDz") != std::string::npos; },
                        std::chrono::seconds(10)))
      << machine.consoleText();
}

}  // namespace
}  // namespace karno::test
