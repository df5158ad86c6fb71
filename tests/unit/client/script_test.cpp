#include "embedded_client/script.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace karno::client {
namespace {

using Steps = std::vector<ScriptStep>;
using Parsed = std::variant<Steps, std::string>;

Parsed refused(const char* why) { return std::string(why); }

TEST(ClientScript, PostsMessagesAtTheirTimes) {
  const Parsed parsed = parseScript("2:check-for-updates,5:user-selected-quit");

  EXPECT_EQ(parsed, Parsed(Steps{{2000, PostMessage{"check-for-updates", std::nullopt}},
                                 {5000, PostMessage{"user-selected-quit", std::nullopt}}}));
}

TEST(ClientScript, KnowsExitCrashAndIgnoreTerm) {
  const Parsed parsed = parseScript("0:ignore-term,1:exit=3,2:crash");

  EXPECT_EQ(parsed,
            Parsed(Steps{{0, IgnoreTerminationSignal{}}, {1000, ExitWithStatus{3}}, {2000, Crash{}}}));
}

TEST(ClientScript, TakesThreePlacesAfterThePoint) {
  const Parsed parsed = parseScript("0.5:crash,1.25:crash,2.125:crash");

  EXPECT_EQ(parsed, Parsed(Steps{{500, Crash{}}, {1250, Crash{}}, {2125, Crash{}}}));
}

TEST(ClientScript, IsSortedByTimeAndKeepsTheOrderOfOneMoment) {
  const Parsed parsed = parseScript("3:crash,1:exit=1,1:exit=2");

  EXPECT_EQ(parsed, Parsed(Steps{{1000, ExitWithStatus{1}}, {1000, ExitWithStatus{2}}, {3000, Crash{}}}));
}

TEST(ClientScript, GivesAMessageItsReason) {
  const Parsed parsed = parseScript("1:app-is-terminating-abnormally=disk full: no room");

  EXPECT_EQ(parsed,
            Parsed(Steps{{1000, PostMessage{"app-is-terminating-abnormally", "disk full: no room"}}}));
}

TEST(ClientScript, HasNoStepsWhenItIsEmpty) { EXPECT_EQ(parseScript(""), Parsed(Steps{})); }

TEST(ClientScript, RefusesAStepWithoutATime) {
  EXPECT_EQ(parseScript("crash"), refused("'crash' is not of the form SECONDS:ACTION"));
}

TEST(ClientScript, RefusesTimesThatAreNoNumberOfSeconds) {
  EXPECT_EQ(parseScript(":crash"), refused("'' is no number of seconds"));
  EXPECT_EQ(parseScript("-1:crash"), refused("'-1' is no number of seconds"));
  EXPECT_EQ(parseScript("1.:crash"), refused("'1.' is no number of seconds"));
  EXPECT_EQ(parseScript("1.-5:crash"), refused("'1.-5' is no number of seconds"));
  EXPECT_EQ(parseScript("0.1234:crash"), refused("'0.1234' is no number of seconds"));
  EXPECT_EQ(parseScript("soon:crash"), refused("'soon' is no number of seconds"));
}

TEST(ClientScript, EndsWithinADay) {
  EXPECT_EQ(parseScript("86400:crash"), Parsed(Steps{{86400000, Crash{}}}));
  EXPECT_EQ(parseScript("86400.001:crash"), refused("'86400.001' is no number of seconds"));
  EXPECT_EQ(parseScript("99999999999999999999:crash"),
            refused("'99999999999999999999' is no number of seconds"));
}

TEST(ClientScript, RefusesActionsItDoesNotKnow) {
  const char* const kWhy = "'quit' is neither a message nor one of exit=STATUS, crash and ignore-term";

  EXPECT_EQ(parseScript("1:crash,2:quit"), refused(kWhy));
}

TEST(ClientScript, RefusesExitStatusesThatNoProcessHas) {
  EXPECT_EQ(parseScript("1:exit=256"),
            refused("'exit=256' is neither a message nor one of exit=STATUS, crash and ignore-term"));
  EXPECT_EQ(parseScript("1:exit"),
            refused("'exit' is neither a message nor one of exit=STATUS, crash and ignore-term"));
  EXPECT_EQ(parseScript("1:crash=1"),
            refused("'crash=1' is neither a message nor one of exit=STATUS, crash and ignore-term"));
}

TEST(ClientScript, RefusesEmptySteps) {
  EXPECT_EQ(parseScript("1:crash,,2:crash"), refused("'' is not of the form SECONDS:ACTION"));
  EXPECT_EQ(parseScript("1:crash,"), refused("it ends with a comma"));
}

TEST(ClientScript, HasAThousandStepsAtMost) {
  std::string text = "0:crash";
  for (int i = 1; i < 1001; ++i) text += ",0:crash";

  EXPECT_EQ(parseScript(text), refused("more than 1000 steps"));
}

}  // namespace
}  // namespace karno::client
