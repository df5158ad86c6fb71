#include "command_line/program.h"

#include <gtest/gtest.h>

#include <sstream>

namespace karno::command_line {
namespace {

int fail(const Arguments&) { throw std::runtime_error("the disk is full"); }
int misunderstand(const Arguments&) { throw UsageError("which one?"); }

// What somebody sees who types a command line of a program that can do three things.
class TypedCommand : public testing::Test {
 protected:
  int type(const std::vector<std::string>& words) {
    const auto sing = [this](const Arguments&) {
      out_ << "la\n";
      return 7;
    };
    const Program program{
        .name = "robot",
        .version = "2.1",
        .purpose = "Does things.",
        .exitStatuses = "0 done",
        .verbs = {
            {.name = "sing", .synopsis = "[SONG]", .summary = "make music", .help = "Sings.\n", .run = sing},
            {.name = "fail", .summary = "fail", .help = "Fails.\n", .run = fail},
            {.name = "guess", .summary = "ask back", .help = "Asks.\n", .run = misunderstand}}};
    return run(program, words, out_, err_);
  }

  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(TypedCommand, EndsAsItsVerbEnds) {
  EXPECT_EQ(type({"sing"}), 7);

  EXPECT_EQ(out_.str(), "la\n");
  EXPECT_EQ(err_.str(), "");
}

TEST_F(TypedCommand, TellsItsVersionInEveryWayAndPlace) {
  const std::vector<std::vector<std::string>> lines{{"--version"},  {"-V"},         {"sing", "--version"},
                                                    {"fail", "-V"}, {"help", "-V"}, {"help", "--version"}};

  for (const auto& words : lines) EXPECT_EQ(type(words), 0) << words.front();

  EXPECT_EQ(out_.str(), "robot 2.1\nrobot 2.1\nrobot 2.1\nrobot 2.1\nrobot 2.1\nrobot 2.1\n");
}

TEST_F(TypedCommand, ExplainsHelpAsItDoesAnyVerb) {
  EXPECT_EQ(type({"help", "help"}), 0);
  EXPECT_EQ(type({"help", "--help"}), 0);
  EXPECT_EQ(type({"help", "-h"}), 0);

  const std::string once = "Usage: robot help [VERB]\n\nSays how VERB is used, or lists the verbs.\n";
  EXPECT_EQ(out_.str(), once + once + once);
}

TEST_F(TypedCommand, RefusesAValueForTheVersion) {
  EXPECT_EQ(type({"sing", "--version=2"}), 64);

  EXPECT_EQ(err_.str(),
            "robot: unknown option '--version=2'; did you mean '--version'?\nTry \"robot help sing\".\n");
}

TEST_F(TypedCommand, ShowsWhatWasTypedInOneLineThatATerminalBears) {
  EXPECT_EQ(type({"a\nb\033[31m\xFF"}), 64);
  EXPECT_EQ(type({std::string(100'000, 'x')}), 64);

  EXPECT_EQ(err_.str(),
            "robot: unknown verb 'a\\nb\\u001b[31m\uFFFD'\nTry \"robot --help\".\nrobot: unknown verb '" +
                std::string(286, 'x') + "...\nTry \"robot --help\".\n");
}

TEST_F(TypedCommand, SaysWhyItFailed) {
  EXPECT_EQ(type({"fail"}), 1);

  EXPECT_EQ(err_.str(), "robot: the disk is full\n");
}

TEST_F(TypedCommand, SaysWhereToReadOnWhenTheVerbIsUsedWrongly) {
  EXPECT_EQ(type({"guess"}), 64);

  EXPECT_EQ(err_.str(), "robot: which one?\nTry \"robot help guess\".\n");
}

TEST_F(TypedCommand, FailsWhenNothingCanBePrinted) {
  out_.setstate(std::ios::badbit);

  EXPECT_EQ(type({"sing"}), 1);

  EXPECT_EQ(err_.str(), "robot: cannot write the output\n");
}

TEST_F(TypedCommand, ListsTheVerbsHoweverHelpIsAskedFor) {
  EXPECT_EQ(type({"help"}), 0);
  EXPECT_EQ(type({"--help"}), 0);
  EXPECT_EQ(type({"-h"}), 0);

  const std::string text =
      "Usage: robot VERB [ARGUMENT...]\n"
      "       robot help [VERB]\n"
      "       robot --help | --version\n"
      "\n"
      "Does things.\n"
      "\n"
      "Verbs:\n"
      "  sing       make music\n"
      "  fail       fail\n"
      "  guess      ask back\n"
      "  help       say how a verb is used\n"
      "\n"
      "Exit status: 0 done, 64 wrong usage.\n";
  EXPECT_EQ(out_.str(), text + text + text);
}

TEST_F(TypedCommand, ExplainsAVerbHoweverHelpIsAskedFor) {
  EXPECT_EQ(type({"help", "sing"}), 0);
  EXPECT_EQ(type({"sing", "--help"}), 0);
  EXPECT_EQ(type({"sing", "-h"}), 0);

  const std::string text = "Usage: robot sing [SONG]\n\nSings.\n";
  EXPECT_EQ(out_.str(), text + text + text);
}

TEST_F(TypedCommand, TellsTheVersion) {
  EXPECT_EQ(type({"--version"}), 0);

  EXPECT_EQ(out_.str(), "robot 2.1\n");
}

struct WrongWords {
  std::vector<std::string> words;
  const char* complaint;
};

void PrintTo(const WrongWords& wrong, std::ostream* out) { *out << wrong.complaint; }

class WronglyTypedCommand : public TypedCommand, public testing::WithParamInterface<WrongWords> {};

TEST_P(WronglyTypedCommand, IsPointedToTheHelp) {
  EXPECT_EQ(type(GetParam().words), 64);

  EXPECT_EQ(out_.str(), "");
  EXPECT_EQ(err_.str(), std::string("robot: ") + GetParam().complaint + "\nTry \"robot --help\".\n");
}

INSTANTIATE_TEST_SUITE_P(
    Each, WronglyTypedCommand,
    testing::Values(WrongWords{{}, "what is to be done? (no verb given)"},
                    WrongWords{{"sign"}, "unknown verb 'sign'; did you mean 'sing'?"},
                    WrongWords{{"help", "guest"}, "unknown verb 'guest'; did you mean 'guess'?"},
                    WrongWords{{"help", "sing", "fail"}, "help takes one verb at most"},
                    WrongWords{{"--help", "sing"}, "--help stands alone"},
                    WrongWords{{"-h", "sing"}, "-h stands alone"},
                    WrongWords{{"--version", "sing"}, "--version stands alone"},
                    WrongWords{{"--versoin"}, "unknown option '--versoin'; did you mean '--version'?"},
                    WrongWords{{"-v"}, "unknown option '-v'"}));

}  // namespace
}  // namespace karno::command_line
