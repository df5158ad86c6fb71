#include "platform/macos/machine/console_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <stdexcept>
#include <thread>

#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "stand_in.h"

// NSLog() to the source under test, as Foundation declares it.
extern "C" void karno_stand_in_log(karno::platform::objc::Id format, ...);

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

class MacConsoleLog : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  NSLogConsole console_;
};

// A line may hold what a format would take for a placeholder.
TEST_F(MacConsoleLog, GivesTheLineAsAnArgumentOfAFixedFormat) {
  console_.log("100 %@ of %n: ü");

  EXPECT_THAT(standIns_.messages(), ElementsAre("log %@, 100 %@ of %n: ü"));
}

TEST_F(MacConsoleLog, TakesAnyBytes) {
  console_.log("");
  console_.log("a\xFF");

  EXPECT_THAT(standIns_.messages(), ElementsAre("log %@, ", "log %@, a\xEF\xBF\xBD"));
}

TEST_F(MacConsoleLog, IsWrittenFromAnyThread) {
  std::thread([] { writeConsoleLine("from elsewhere"); }).join();

  EXPECT_THAT(standIns_.messages(), ElementsAre("log %@, from elsewhere"));
}

TEST_F(MacConsoleLog, KeepsToItselfWhatIsRaised) {
  standIns_.raise();

  EXPECT_NO_THROW(console_.log("a line"));
  EXPECT_THAT(standIns_.messages(), ElementsAre("log %@, a line"));
}

}  // namespace
}  // namespace karno::platform::trial

void karno_stand_in_log(karno::platform::objc::Id format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const karno::platform::objc::Id line = va_arg(arguments, karno::platform::objc::Id);
  va_end(arguments);
  if (karno::platform::trial::StandIns::isThere()) {
    karno::platform::trial::recordAndAnswer(
        "log", karno::platform::objc::text(format) + ", " + karno::platform::objc::text(line));
  }
}
