#include "platform/linux/machine/machine_shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "../../support/scoped_environment.h"
#include "../../support/shell_output.h"
#include "../../support/temporary_folder.h"
#include "elements_are.h"
#include "platform/linux/machine/machine_commands.h"
#include "subprocess.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using karno::test::ElementsAre;
using test::outputOf;
using test::ScopedEnvironment;
using test::TemporaryFolder;

// A machine root in a folder whose name a shell would stumble over.
class MachineShellTest : public testing::Test {
 protected:
  void layOutMachine(const std::vector<std::string>& options) const {
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

  const TemporaryFolder folder_;
  const std::string root_ = folder_ / "the user's disk";
  const ScopedEnvironment environment_{"KARNO_MACHINE_ROOT", root_};
  MachineShell shell_;
};

TEST_F(MachineShellTest, FindsTheMachinesProcessor) {
  layOutMachine({"--cpu", "x86_64"});

  EXPECT_THAT(outputOf(shell_, "/bin/sh --noprofile -c \"uname -m\"").pieces, ElementsAre("x86_64\n"));
}

TEST_F(MachineShellTest, FindsTheMachinesVersion) {
  layOutMachine({"--macos", "12.2.1"});

  EXPECT_THAT(
      outputOf(shell_, "/bin/sh --noprofile -c \"sw_vers\"").pieces,
      ElementsAre("ProductName:\t\tmacOS\n", "ProductVersion:\t\t12.2.1\n", "BuildVersion:\t\t21C100\n"));
}

TEST_F(MachineShellTest, FindsTheMachinesCommandsFirst) {
  layOutMachine({});

  EXPECT_THAT(outputOf(shell_, "command -v open").pieces, ElementsAre(root_ + "/usr/bin/open\n"));
}

TEST_F(MachineShellTest, RunsTheMachinesOwnShellInsideAndOutside) {
  writeProgram(
      "bin/sh",
      "#!/bin/bash\necho \"shell of the machine:\" \"$@\"\n[ \"$1\" = inner ] || exec bash \"$@\"\n");

  EXPECT_THAT(
      outputOf(shell_, "/bin/sh inner").pieces,
      ElementsAre("shell of the machine: -c '" + (folder_ / "the user'\\''s disk/bin/sh") + "' inner\n",
                  "shell of the machine: inner\n"));
}

TEST_F(MachineShellTest, UsesTheSystemsShellThatTakesTheLineWhereThereIsNoMachine) {
  EXPECT_THAT(outputOf(shell_, "/bin/sh --noprofile -c \"echo still here\"").pieces,
              ElementsAre("still here\n"));
}

TEST_F(MachineShellTest, KeepsACommandFoundWithoutASearchPath) {
  const ScopedEnvironment searchPath("PATH", std::nullopt);

  EXPECT_THAT(outputOf(shell_, "echo \"$PATH\"").pieces,
              ElementsAre(root_ + "/usr/bin:/usr/local/bin:/usr/bin:/bin\n"));
}

TEST_F(MachineShellTest, LooksInTheMachineOnlyForThePathThatALineBeginsWith) {
  writeProgram("usr/bin/tool", "#!/bin/sh\n");
  const std::string tool = "'" + (folder_ / "the user'\\''s disk/usr/bin/tool") + "'";

  EXPECT_EQ(lineForMachine("/usr/bin/tool /usr/bin/tool"), tool + " /usr/bin/tool");
  EXPECT_EQ(lineForMachine("/usr/bin/tool;true"), tool + ";true");
  EXPECT_EQ(lineForMachine("/usr/bin/tool"), tool);
  EXPECT_EQ(lineForMachine("/usr/bin/other --version"), "/usr/bin/other --version");
  EXPECT_EQ(lineForMachine("tool /usr/bin/tool"), "tool /usr/bin/tool");
  EXPECT_EQ(lineForMachine(""), "");
}

}  // namespace
}  // namespace karno::platform
