#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "platform/linux/machine/apple_scripts.h"
#include "platform/linux/machine/authorisations.h"
#include "platform/linux/machine/machine_commands.h"
#include "platform/posix/processes/commands.h"
#include "platform/posix/processes/tasks.h"
#include "platform/value.h"
#include "subprocess.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::contentOf;
using test::ScopedEnvironment;
using test::TemporaryFolder;

constexpr std::uint32_t kMayAsk = kAuthorisationInteractionAllowed;

// A machine root in a folder whose name a shell would stumble over.
class MachineScripts : public testing::Test {
 protected:
  void layOutMachine(const std::vector<std::string>& options = {}) const {
    fs::create_directories(folder_ / "Some.app");
    std::vector<std::string> command = {KARNO_MAKE_MACHINE, root_, "--bundle", folder_ / "Some.app"};
    command.insert(command.end(), options.begin(), options.end());
    const test::CommandResult made = test::runCommand(command, std::chrono::seconds(30));
    ASSERT_EQ(made.status, 0) << made.output;
  }

  void writeProgram(const std::string& path, const std::string& text) const {
    folder_.write("the user's disk/" + path, text);
    fs::permissions(root_ + "/" + path, fs::perms::owner_all);
  }

  std::string outputOf(const TaskLaunch& command) {
    const auto run = commands_.run(command);
    return run ? run.value().standardOutput : run.error().description();
  }

  const TemporaryFolder folder_;
  const std::string root_ = folder_ / "the user's disk";
  const std::string home_ = root_ + "/Users/user";
  const ScopedEnvironment environment_{"KARNO_MACHINE_ROOT", root_};
  const ScopedEnvironment homeVariable_{"HOME", home_};
  PosixTasks tasks_;
  PosixCommands commands_{tasks_, launchForMachine};
};

TEST_F(MachineScripts, RunTheMachinesCommandsByTheirPathsOnAMac) {
  layOutMachine();
  writeProgram("usr/bin/open", "#!/bin/bash\nprintf '[%s]' \"$@\"\n");
  writeProgram("usr/bin/xattr", "#!/bin/bash\nprintf '(%s)' \"$@\"\n");

  const std::string output = outputOf(
      {.executablePath = "/bin/sh",
       .arguments = {
           "-c",
           "(while /bin/kill -0 999999999 >&/dev/null; do /bin/sleep 0.1; done; "
           "/usr/bin/xattr -d -r com.apple.quarantine '/It'\\''s /usr/bin/open'; /usr/bin/open 'a\nb')"}});

  EXPECT_EQ(output, "(-d)(-r)(com.apple.quarantine)(/It's /usr/bin/open)[a\nb]");
}

TEST_F(MachineScripts, AreHandedToAShellAsTheyAreForTheRest) {
  layOutMachine();

  EXPECT_EQ(outputOf({.executablePath = "/bin/sh", .arguments = {"-c", "echo \"$0\" | /usr/bin/grep -c sh"}}),
            "1\n");
}

TEST_F(MachineScripts, FindAProcessByItsName) {
  layOutMachine();
  const TaskLaunch search{
      .executablePath = "/bin/sh",
      .arguments = {
          "-c", "/bin/ps ax -o comm | /usr/bin/grep 'nobody runs this'/ | /usr/bin/grep -v grep >/dev/null"}};

  const auto run = commands_.run(search);

  ASSERT_TRUE(run) << run.error().description();
  EXPECT_EQ(run.value().end.terminationStatus, 1);
}

TEST_F(MachineScripts, RunASingleCommandOfTheMachine) {
  layOutMachine();

  EXPECT_THAT(outputOf({.executablePath = "/usr/bin/hdiutil", .arguments = {"info", "-plist"}}),
              testing::HasSubstr("<key>images</key>\n\t<array/>"));
}

TEST_F(MachineScripts, RunTheSystemsCommandWhereTheMachineHasNone) {
  EXPECT_EQ(outputOf({.executablePath = "/bin/echo", .arguments = {"a"}}), "a\n");
  EXPECT_EQ(outputOf({.executablePath = "/bin/sh", .arguments = {"-c", "/bin/sleep 0 && echo b"}}), "b\n");
}

TEST_F(MachineScripts, AskTheFinderToTrash) {
  layOutMachine();
  folder_.write("A.app/file", "text");
  LinuxAppleScripts scripts(commands_);

  const auto error = scripts.execute("\t\tset theFile to POSIX file \"" + folder_ / "A.app" +
                                     "\" \n\t   \ttell application \"Finder\" \n\t\tmove theFile to trash \n"
                                     "\t  \tend tell");

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(contentOf(home_ + "/.Trash/A.app/file"), "text");
}

TEST_F(MachineScripts, TellThatTheFinderCouldNotTrash) {
  layOutMachine();
  LinuxAppleScripts scripts(commands_);

  const auto error = scripts.execute(
      "set theFile to POSIX file \"/nowhere\" \n tell application \"Finder\" \n move theFile to trash \n end "
      "tell");

  EXPECT_EQ(error, Value(Value::Dictionary{{"NSAppleScriptErrorMessage", "osascript failed"},
                                           {"NSAppleScriptErrorNumber", 1}})
                       .description());
}

TEST_F(MachineScripts, TellThatThereIsNobodyToRunAScript) {
  LinuxAppleScripts scripts(commands_);

  const auto error = scripts.execute("beep");

  ASSERT_TRUE(error);
  EXPECT_THAT(*error, testing::HasSubstr("NSAppleScriptErrorNumber = 2"));
}

TEST_F(MachineScripts, GetAnAdministratorsRights) {
  layOutMachine({"--administrator", "authorises"});
  folder_.write("new/A.app/file", "text");
  PkexecAuthorisations authorisations(commands_);
  const auto authorisation = authorisations.create();
  fs::permissions(root_ + "/Applications", fs::perms(0555));

  const RightAnswer answer = authorisation->copyRight("system.privilege.admin", kMayAsk);
  const auto end = authorisation->executeWithPrivileges(
      {.executablePath = "/bin/cp",
       .arguments = {"-pR", folder_ / "new/A.app", root_ + "/Applications/A.app"}});
  const fs::perms after = fs::status(root_ + "/Applications").permissions();
  fs::permissions(root_ + "/Applications", fs::perms(0755));

  EXPECT_EQ(answer, RightAnswer::Granted);
  EXPECT_TRUE(authorisation->canExecuteWithPrivileges());
  ASSERT_TRUE(end) << end.error().description();
  EXPECT_EQ(end.value().terminationStatus, 0);
  EXPECT_EQ(contentOf(root_ + "/Applications/A.app/file"), "text");
  EXPECT_EQ(after, fs::perms(0555));
}

TEST_F(MachineScripts, AreToldThatTheUserCancelled) {
  layOutMachine({"--administrator", "cancels"});
  PkexecAuthorisations authorisations(commands_);

  EXPECT_EQ(authorisations.create()->copyRight("system.privilege.admin", kMayAsk), RightAnswer::Cancelled);
}

// Without a rule that keeps the first answer, each command asks once more.
TEST_F(MachineScripts, AreToldThatTheUserCancelledTheQuestionForACommand) {
  layOutMachine({"--administrator", "cancels"});
  PkexecAuthorisations authorisations(commands_);

  const auto end = authorisations.create()->executeWithPrivileges(
      {.executablePath = "/bin/rm", .arguments = {"-rf", "x"}});

  ASSERT_FALSE(end);
  EXPECT_EQ(end.error(), Error::posix(EPERM));
}

TEST_F(MachineScripts, AreToldThatTheUserMayNot) {
  layOutMachine({"--administrator", "refuses"});
  PkexecAuthorisations authorisations(commands_);
  const auto authorisation = authorisations.create();

  const auto end =
      authorisation->executeWithPrivileges({.executablePath = "/bin/rm", .arguments = {"-rf", "x"}});

  EXPECT_EQ(authorisation->copyRight("system.privilege.admin", kMayAsk), RightAnswer::Refused);
  EXPECT_FALSE(end);
}

TEST_F(MachineScripts, AskNobodyWhereThatIsNotAllowed) {
  layOutMachine({"--administrator", "authorises"});
  PkexecAuthorisations authorisations(commands_);

  EXPECT_EQ(authorisations.create()->copyRight("system.privilege.admin", 0), RightAnswer::Refused);
}

TEST_F(MachineScripts, AreToldTheStatusOfACommandThatFails) {
  layOutMachine({"--administrator", "fails"});
  PkexecAuthorisations authorisations(commands_);
  const auto authorisation = authorisations.create();

  const auto end =
      authorisation->executeWithPrivileges({.executablePath = "/bin/cp", .arguments = {"a", "b"}});

  EXPECT_EQ(authorisation->copyRight("system.privilege.admin", kMayAsk), RightAnswer::Granted);
  ASSERT_TRUE(end) << end.error().description();
  EXPECT_EQ(end.value().terminationStatus, 1);
}

}  // namespace
}  // namespace karno::platform
