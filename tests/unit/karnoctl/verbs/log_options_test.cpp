#include "karnoctl/verbs/log_options.h"

#include <gtest/gtest.h>

#include <vector>

namespace karno::karnoctl {
namespace {

using Words = std::vector<std::string>;
using Parsed = std::variant<LogOptions, UsageError>;

Parsed refused(const char* text) { return UsageError{text, "log"}; }

TEST(LogOptions, ShowFiftyLinesByThemselves) {
  EXPECT_EQ(parseLogOptions(Words{}),
            Parsed(LogOptions{.lines = 50, .follow = false, .colour = ColourChoice::Auto, .help = false}));
}

TEST(LogOptions, TakeANumberOfLinesOrAll) {
  EXPECT_EQ(parseLogOptions(Words{"--lines", "7"}), Parsed(LogOptions{.lines = 7}));
  EXPECT_EQ(parseLogOptions(Words{"--lines=0"}), Parsed(LogOptions{.lines = 0}));
  EXPECT_EQ(parseLogOptions(Words{"--lines=all"}), Parsed(LogOptions{.lines = std::nullopt}));
}

TEST(LogOptions, RefuseWhatIsNoNumberOfLines) {
  EXPECT_EQ(parseLogOptions(Words{"--lines", "-7"}), refused("'-7' is no number of lines"));
  EXPECT_EQ(parseLogOptions(Words{"--lines", "7x"}), refused("'7x' is no number of lines"));
  EXPECT_EQ(parseLogOptions(Words{"--lines="}), refused("'' is no number of lines"));
  EXPECT_EQ(parseLogOptions(Words{"--lines=99999999999999999999"}),
            refused("'99999999999999999999' is no number of lines"));
  EXPECT_EQ(parseLogOptions(Words{"--lines"}), refused("--lines needs a value"));
}

TEST(LogOptions, TakeAChoiceOfColours) {
  EXPECT_EQ(parseLogOptions(Words{"--color=always"}), Parsed(LogOptions{.colour = ColourChoice::Always}));
  EXPECT_EQ(parseLogOptions(Words{"--color", "never"}), Parsed(LogOptions{.colour = ColourChoice::Never}));
  EXPECT_EQ(parseLogOptions(Words{"--color=auto"}), Parsed(LogOptions{.colour = ColourChoice::Auto}));
  EXPECT_EQ(parseLogOptions(Words{"--color=red"}), refused("--color takes auto, always or never, not 'red'"));
}

TEST(LogOptions, FollowAndAskForHelp) {
  EXPECT_EQ(parseLogOptions(Words{"--follow"}), Parsed(LogOptions{.follow = true}));
  EXPECT_EQ(parseLogOptions(Words{"--help", "--oops"}), Parsed(LogOptions{.help = true}));
}

TEST(LogOptions, RefuseWhatTheyDoNotKnow) {
  EXPECT_EQ(parseLogOptions(Words{"--folow"}), refused("unknown option '--folow'; did you mean '--follow'?"));
  EXPECT_EQ(parseLogOptions(Words{"-f"}), refused("unknown option '-f'"));
  EXPECT_EQ(parseLogOptions(Words{"today"}), refused("log takes no argument 'today'"));
}

}  // namespace
}  // namespace karno::karnoctl
