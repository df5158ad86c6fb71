#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::Contains;

TEST(Notices, StandInTheLogFileFromTheStartOfTheLogOn) {
  FakePlatform machine;
  KarnoLog::manager().start();

  platform::host().notices.warn("Notifications: the session bus is gone. Reason: none");
  platform::host().notices.inform("Notifications: connected to the session bus again");
  machine.runFor(1);

  EXPECT_THAT(machine.log(), Contains(Line("WARN", "Notifications: the session bus is gone. Reason: none")));
  EXPECT_EQ(machine.log().back(), Line("INFO", "Notifications: connected to the session bus again"));
}

TEST(Notices, GoToTheConsoleAloneBefore) {
  FakePlatform machine;
  KarnoLog& log = KarnoLog::manager();

  platform::host().notices.warn("too early");
  log.logInfo("early");
  machine.runFor(1);

  EXPECT_EQ(machine.console().at(0), "too early");
  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "early")));
}

TEST(Notices, StandInTheLogInTheOrderOfTheThreadThatTellsThem) {
  FakePlatform machine;
  KarnoLog::manager().start();

  machine.onThread([] {
    platform::host().notices.warn("first");
    KarnoLog::manager().logInfo("second");
    platform::host().notices.inform("third");
  });
  machine.runFor(1);

  const std::vector<Line> lines = machine.log();
  EXPECT_THAT(std::vector<Line>(lines.end() - 3, lines.end()),
              ElementsAre(Line("WARN", "first"), Line("INFO", "second"), Line("INFO", "third")));
}

}  // namespace
}  // namespace karno
