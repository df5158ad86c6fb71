#include "platform/linux/machine/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

using test::ScopedEnvironment;
using test::StandardErrorCapture;
using test::TemporaryFolder;

// Remembers what was to be launched, and launches nothing.
class RememberedTasks final : public Tasks {
 public:
  Result<std::int32_t> launch(const TaskLaunch& task, TerminationHandler) override {
    launched.push_back(task.executablePath + " " + testing::PrintToString(task.arguments));
    return std::int32_t{1};
  }

  std::vector<std::string> launched;
};

// A machine root whose "open" writes its arguments into the file "opened".
void makeMachine(const TemporaryFolder& root) {
  const std::string open =
      root.write("usr/bin/open", "#!/bin/sh\necho \"$# $1\" > \"" + root.path() + "/opened.part\"\nmv \"" +
                                     root.path() + "/opened.part\" \"" + root.path() + "/opened\"\n");
  std::filesystem::permissions(open, std::filesystem::perms::owner_all);
}

void waitForOpened(const std::string& path) {
  for (int attempt = 0; attempt < 1000 && !std::filesystem::exists(path); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

TEST(LinuxWorkspace, HandsAUrlToTheMachinesOpen) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/srv/machine");
  RememberedTasks tasks;
  LinuxWorkspace workspace(tasks);

  workspace.openURL("https://example.org/a%20b?c=d&e#f");

  EXPECT_THAT(tasks.launched,
              testing::ElementsAre("/srv/machine/usr/bin/open { \"https://example.org/a%20b?c=d&e#f\" }"));
}

TEST(LinuxWorkspace, StartsTheRealProgramWithTheUrlAsItsOnlyArgument) {
  const TemporaryFolder folder;
  makeMachine(folder);
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", folder.path());
  PosixTasks tasks;
  LinuxWorkspace workspace(tasks);

  workspace.openURL("https://example.org/$(x);'*");
  waitForOpened(folder / "opened");

  EXPECT_EQ(test::contentOf(folder / "opened"), "1 https://example.org/$(x);'*\n");
}

TEST(LinuxWorkspace, IgnoresWhatIsNoUrlAndSaysSo) {
  const StandardErrorCapture console;
  RememberedTasks tasks;
  LinuxWorkspace workspace(tasks);

  workspace.openURL("");
  workspace.openURL("-n");
  workspace.openURL("/Applications/Karno.app");
  workspace.openURL("9p://server");
  workspace.openURL("https://example.org/a b");
  workspace.openURL("https://example.org/ä");

  EXPECT_THAT(tasks.launched, testing::IsEmpty());
  EXPECT_EQ(console.text(),
            "Workspace: this is no URL and cannot be opened: \n"
            "Workspace: this is no URL and cannot be opened: -n\n"
            "Workspace: this is no URL and cannot be opened: /Applications/Karno.app\n"
            "Workspace: this is no URL and cannot be opened: 9p://server\n"
            "Workspace: this is no URL and cannot be opened: https://example.org/a b\n"
            "Workspace: this is no URL and cannot be opened: https://example.org/ä\n");
}

TEST(LinuxWorkspace, SaysWhenThereIsNothingToOpenItWith) {
  const TemporaryFolder folder;
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", folder.path());
  const StandardErrorCapture console;
  PosixTasks tasks;
  LinuxWorkspace workspace(tasks);

  workspace.openURL("https://example.org");

  EXPECT_EQ(console.text(),
            "Workspace: failed to open https://example.org. Reason: The operation couldn’t be completed. No "
            "such file or directory\n");
}

}  // namespace
}  // namespace karno::platform
