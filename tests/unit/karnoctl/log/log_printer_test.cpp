#include "karnoctl/log/log_printer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace karno::karnoctl {
namespace {

constexpr const char* kBefore = "2024-03-05 14:07:09:042+0100 (4242) ";

std::string printed(std::string_view text, LogPrinting printing) {
  std::ostringstream out;
  LogPrinter printer(out, printing);
  printer.print(text);
  return out.str();
}

TEST(LogLevel, IsOneThatTheLauncherHas) {
  EXPECT_TRUE(isLogLevel("INFO"));
  EXPECT_TRUE(isLogLevel("*** ERROR ***"));
  EXPECT_FALSE(isLogLevel("notice"));
  EXPECT_FALSE(isLogLevel("info"));
  EXPECT_FALSE(isLogLevel(""));
}

TEST(ColouredLogLine, HasItsLevelInColour) {
  const std::string before(kBefore);

  EXPECT_EQ(colouredLogLine(before + "[INFO] Text"), before + "[\033[32mINFO\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[WARN] Text"), before + "[\033[33mWARN\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[*** ERROR ***] Text"),
            before + "[\033[1;31m*** ERROR ***\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[NET] Text"), before + "[\033[36mNET\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[STARTUP] Text"), before + "[\033[1mSTARTUP\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[DEBUG] Text"), before + "[\033[2mDEBUG\033[0m] Text");
  EXPECT_EQ(colouredLogLine(before + "[VERBOSE] Text"), before + "[\033[2mVERBOSE\033[0m] Text");
}

TEST(ColouredLogLine, StaysAsItIsWithoutALevel) {
  const std::string unknown = std::string(kBefore) + "[LOUD] Text";

  EXPECT_EQ(colouredLogLine(""), "");
  EXPECT_EQ(colouredLogLine("the second line of a message (1) [I"), "the second line of a message (1) [I");
  EXPECT_EQ(colouredLogLine(unknown), unknown);
  EXPECT_EQ(colouredLogLine(std::string(100, 'x') + " (1) [INFO] Text"),
            std::string(100, 'x') + " (1) [INFO] Text");
}

TEST(LogLineOnAScreen, ShowsControlCharactersInsteadOfObeyingThem) {
  EXPECT_EQ(withoutControlCharacters("a\033[2Jb\x07\x7F\tc\u00E4"), "a^[[2Jb^G^?\tc\u00E4");
}

TEST(LogLineOnAScreen, ShowsWhatActsBeyondASCIIToo) {
  EXPECT_EQ(withoutControlCharacters("a\u009B2J\u202Eb\u05D0"), "a\\u009b2J\\u202eb\u05D0");
  EXPECT_EQ(withoutControlCharacters("a\x9B"
                                     "2J"),
            "a\uFFFD2J");
}

TEST(LogPrinter, PrintsBytesAsTheyAreIntoAFile) {
  EXPECT_EQ(printed("a\033[2J\nb\n", {.toTerminal = false, .colours = false}), "a\033[2J\nb\n");
}

TEST(LogPrinter, DisarmsALineBeforeItColoursIt) {
  const std::string line = std::string(kBefore) + "[WARN] a\033[2J\n";

  EXPECT_EQ(printed(line, {.toTerminal = true, .colours = true}),
            std::string(kBefore) + "[\033[33mWARN\033[0m] a^[[2J\n");
  EXPECT_EQ(printed(line, {.toTerminal = true, .colours = false}), std::string(kBefore) + "[WARN] a^[[2J\n");
}

TEST(LogPrinter, WaitsForTheRestOfALine) {
  std::ostringstream out;
  LogPrinter printer(out, {});

  printer.print("one\nt");
  EXPECT_EQ(out.str(), "one\n");

  printer.print("w");
  printer.print("o\n\nthree");
  EXPECT_EQ(out.str(), "one\ntwo\n\n");

  printer.endLine();
  printer.endLine();
  EXPECT_EQ(out.str(), "one\ntwo\n\nthree\n");
}

TEST(LogPrinter, DoesNotWaitForEverOnALineThatNeverEnds) {
  std::ostringstream out;
  LogPrinter printer(out, {});

  printer.print(std::string(2U << 20U, 'x'));

  EXPECT_EQ(out.str().size(), (2U << 20U) + 1U);
}

}  // namespace
}  // namespace karno::karnoctl
