#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAreArray;
using ::testing::IsSupersetOf;

constexpr const char* kFuse = "Karno(Fuse).app";
constexpr const char* kFileProvider = "Karno.app";
constexpr const char* kNothingFetched =
    "WARN Sparkle[ABORT] Update Aborted (Error Domain=SUSparkleErrorDomain Code=1002 \"The list of updates "
    "could "
    "not be fetched: Could not connect to the server.\" UserInfo={NSLocalizedDescription=The list of updates "
    "could not be fetched: Could not connect to the server.})";
constexpr const char* kClientStartedAgain = "INFO Main: Started Karno successfully";

// What a user chooses, by the FIFO that the clients read. It is kept open, so that nothing is lost between
// two clients.
class User {
 public:
  explicit User(fs::path fifo) : fifo_(std::move(fifo)) {
    if (::mkfifo(fifo_.c_str(), 0600) == 0) descriptor_ = ::open(fifo_.c_str(), O_RDWR | O_CLOEXEC);
  }
  ~User() { ::close(descriptor_); }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  std::string asVariable() const { return "KARNO_CLIENT_MESSAGES=" + fifo_.string(); }

  // Whether that could be said.
  bool chooses(const std::string& line) const {
    const std::string text = line + "\n";
    return ::write(descriptor_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  }

 private:
  fs::path fifo_;
  int descriptor_ = -1;
};

// A machine with macFUSE, in which both builds are the client in one file.
class OneFileClient : public ::testing::TestWithParam<const char*> {
 protected:
  OneFileClient() {
    for (const std::string name : {"Karno", "Karno(Fuse)"}) {
      fs::copy_file(oneFileClient(GetParam()), machine.helper(name + ".app") / "Contents/MacOS" / name,
                    fs::copy_options::overwrite_existing);
    }
    machine.useFeed(kNoFeed);
  }

  void start() {
    machine.start({"--env", user.asVariable()});
    ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  }

  // Ends when so many launchers in all have started, and the last of them has the machine to itself: two of
  // them would both obey what is chosen next.
  void chooseLauncher(const std::string& message, std::ptrdiff_t launchers) {
    ASSERT_TRUE(user.chooses(message));
    ASSERT_TRUE(machine.waitForMessages(launchers, kStarted)) << machine.consoleText();
    ASSERT_TRUE(machine.waitForMessages(launchers - 1, kTerminating)) << machine.consoleText();
    const fs::path launcher = machine.bundle() / "Contents/MacOS/Karno";
    ASSERT_TRUE(machine.waitUntil([&] { return machine.processesOf(launcher).size() == 1; },
                                  std::chrono::seconds(20)));
  }

  Machine machine{builtTools(), {"--fuse", "4.4.1"}};
  User user{machine.root() / "user"};
};

Messages handingOver(const std::string& message, const std::string& bundleIdentifier,
                     const std::string& build) {
  return joined({{"INFO Notify[LISTEN] Received '" + message + "'"},
                 leavingMessages(bundleIdentifier),
                 {"INFO Startup[RESTART] Karno has quit - restarting wrapper (-launch " + build + ")",
                  "INFO AppDelegate[TERMINATE] Reason: Restart Wrapper", kTerminating}});
}

TEST_P(OneFileClient, IsRestartedByItselfAndWithItsLauncherInEitherBuildAndQuits) {
  start();

  user.chooses("app-needs-restart");
  ASSERT_TRUE(machine.waitForMessages(2, kClientStartedAgain)) << machine.consoleText();
  chooseLauncher("restart-wrapper", 2);
  chooseLauncher("restart-wrapper-with-fuse", 3);
  chooseLauncher("restart-wrapper-with-file-provider", 4);
  user.chooses("user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  const Messages fuse =
      joined({fuseSystemMessages("arm64", "14.5"), fuseMetMessages("4.4.1"), launchMessages(kFuse)});
  const auto logs = machine.logsByProcess();
  ASSERT_EQ(logs.size(), 4U);
  EXPECT_THAT(
      logs[0],
      ElementsAreArray(joined(
          {openingMessages(),
           {kFirstStartup},
           fileProviderMessages(),
           {"INFO Notify[LISTEN] Received 'app-needs-restart'", "INFO Notify[LISTEN] Restarting Karno.app."},
           leavingMessages("it.vantul.Karno"),
           {"INFO Startup[LAUNCH] Launching Karno.app", "INFO Startup[LAUNCH] Launched Karno.app (pid: N)",
            kClientStartedAgain},
           handingOver("restart-wrapper", "it.vantul.Karno", kFileProvider)})));
  EXPECT_THAT(logs[1],
              ElementsAreArray(joined({openingMessages("bash"), fileProviderMessages(),
                                       handingOver("restart-wrapper-with-fuse", "it.vantul.Karno", kFuse)})));
  EXPECT_THAT(logs[2], ElementsAreArray(joined({openingMessages("bash"), fuse,
                                                handingOver("restart-wrapper-with-file-provider",
                                                            "it.vantul.KarnoFuse", kFileProvider)})));
  EXPECT_THAT(withoutClientsEnd(logs[3]),
              ElementsAreArray(joined(
                  {openingMessages("bash"), fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

// The switches are thrown while the updater's alert is up, so that they begin no check of their own.
TEST_P(OneFileClient, SteersTheUpdaterAndTellsThatItTerminates) {
  start();

  user.chooses("check-for-updates");
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();
  user.chooses("enable-automatic-updates");
  user.chooses("disable-automatic-updates");
  ASSERT_TRUE(machine.waitForMessage("INFO Sparkle[CONFIG] Check updates automatically=0"));
  pressKey(machine, *alert, "Return");
  user.chooses("app-is-terminating");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(withoutClientsEnd(machine.console()),
              ElementsAreArray(
                  joined({openingMessages(),
                          {kFirstStartup},
                          fileProviderMessages(),
                          {"INFO Notify[LISTEN] Received 'check-for-updates'",
                           std::string("INFO Sparkle[CHECK] Checking for updates (") + kNoFeed + ")",
                           kNothingFetched, "INFO Notify[LISTEN] Received 'enable-automatic-updates'",
                           "INFO Sparkle[CONFIG] Check updates automatically=1",
                           "INFO Notify[LISTEN] Received 'disable-automatic-updates'",
                           "INFO Sparkle[CONFIG] Check updates automatically=0",
                           "INFO Notify[LISTEN] Received 'app-is-terminating'",
                           "INFO AppDelegate[TERMINATE] Reason: Karno.app is terminated", kTerminating}})));
}

TEST_P(OneFileClient, TellsWhyItHasFailed) {
  start();

  user.chooses("app-is-terminating-abnormally=disk full");
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();
  pressKey(machine, *alert, "Escape");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {openingMessages(),
           {kFirstStartup},
           fileProviderMessages(),
           {"INFO Notify[LISTEN] Received 'app-is-terminating-abnormally'",
            "*** ERROR *** Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=disk full)",
            "INFO Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally.",
            "INFO AppDelegate[TERMINATE] Reason: User selected quit for crash", kTerminating}})));
}

std::string textOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// The last lines for a shell in docs/protocol.md, in a machine of this test's.
std::string documentedTrial(const fs::path& project, const fs::path& root) {
  const std::string document = textOf(project / "docs/protocol.md");
  const std::string fence = "\n```sh\n";
  const std::size_t begin = document.rfind(fence) + fence.size();
  std::string lines = document.substr(begin, document.find("```", begin) - begin);
  lines =
      std::regex_replace(lines, std::regex("--fuse"), "--bundle " + builtTools().bundle.string() + " --fuse");
  return std::regex_replace(lines, std::regex("/tmp/machine"), root.string());
}

TEST(OneFileClientDocument, LeadsToAClientThatChangesTheBuildAndQuits) {
  const Machine machine(builtTools());
  const fs::path project = builtTools().commands.parent_path().parent_path();
  const std::string trial =
      "set -e; cd '" + project.string() + "'\n" + documentedTrial(project, machine.root());

  const CommandResult result = runCommand({"bash", "-c", trial}, std::chrono::seconds(90));

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_THAT(machine.log(), IsSupersetOf({"INFO Notify[LISTEN] Received 'restart-wrapper-with-fuse'",
                                           "INFO Startup[LAUNCH] Launching Karno(Fuse).app",
                                           "INFO AppDelegate[TERMINATE] Reason: User selected quit"}));
}

INSTANTIATE_TEST_SUITE_P(Languages, OneFileClient, ::testing::Values("cpp", "python", "shell"),
                         [](const auto& parameter) { return std::string(parameter.param); });

}  // namespace
}  // namespace karno::test
