#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::IsSupersetOf;

// A machine with what a Mac has for work in the session of another user. Here everything is one user's.
class AdministratorsScripts : public ::testing::Test {
 protected:
  AdministratorsScripts() {
    makeTool("stat", "echo user");
    makeTool("id", "case \"$*\" in '-u user') echo 501 ;; *) exec /usr/bin/id \"$@\" ;; esac");
    makeTool("launchctl", "shift 2; exec \"$@\"");
    makeTool("sudo", "shift 3; exec \"$@\"");
    makeTool("pkgutil", "exit 1");
    makeTool("defaults", "exit 1");
  }

  void SetUp() override {
    machine.start();
    ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  }

  void makeTool(const std::string& name, const std::string& text) const {
    const fs::path tool = machine.root() / "usr/bin" / name;
    std::ofstream(tool) << "#!/bin/sh\n" << text << '\n';
    fs::permissions(tool, fs::perms(0755));
  }

  static std::string source(const std::string& path) {
    return (builtTools().commands.parent_path().parent_path() / path).string();
  }

  Machine machine{builtTools()};
};

TEST_F(AdministratorsScripts, OfThePackageHasTheLauncherQuit) {
  const CommandResult result = machine.in({source("resources/macos/package/scripts/preinstall"), "Karno.pkg",
                                           machine.root() / "Applications", "/", "/"});

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), IsSupersetOf(joined({quittingMessages(), {kTerminating}})));
}

TEST_F(AdministratorsScripts, TakesTheLauncherAwayOnceItHasQuit) {
  const CommandResult result = machine.in({source("docs/examples/remove-karno")});

  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_FALSE(fs::exists(machine.logFile().parent_path()));
  EXPECT_TRUE(fs::exists(machine.home() / "Library/Logs"));
}

// The path in it is a Mac's.
TEST_F(AdministratorsScripts, TellsAManagementServerThatTheLauncherRuns) {
  const std::string script = "sed \"s:/Applications/:$KARNO_MACHINE_ROOT/Applications/:\" '" +
                             source("docs/examples/karno-state") + "' | sh";

  EXPECT_EQ(machine.in({"bash", "-c", script}).output, "<result>runs</result>\n");
}

}  // namespace
}  // namespace karno::test
