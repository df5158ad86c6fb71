#include "command_line/arguments.h"

#include <gtest/gtest.h>

namespace karno::command_line {
namespace {

using Words = std::vector<std::string>;

Verb packing() {
  return {.name = "pack",
          .summary = {},
          .help = {},
          .options = {"--into", "--level"},
          .texts = {"--note"},
          .flags = {"--quiet"},
          .word = "FOLDER",
          .run = {}};
}

Verb resting() { return {.name = "rest", .summary = {}, .help = {}, .run = {}}; }

// What is wrong with them.
std::string errorOf(const Words& words, const Verb& verb = packing()) {
  try {
    const Arguments arguments(verb, words);
    return "(none)";
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(Arguments, ComeInAnyOrder) {
  const Arguments arguments(packing(), Words{"--into", "box", "photos", "--quiet", "--level=9"});

  EXPECT_EQ(arguments.word(), "photos");
  EXPECT_EQ(arguments.value("--into"), "box");
  EXPECT_EQ(arguments.value("--level"), "9");
  EXPECT_TRUE(arguments.has("--quiet"));
}

TEST(Arguments, AreAbsentWhenNothingIsSaid) {
  const Arguments arguments(packing(), Words{});

  EXPECT_EQ(arguments.word(), std::nullopt);
  EXPECT_EQ(arguments.value("--into"), std::nullopt);
  EXPECT_FALSE(arguments.has("--quiet"));
}

TEST(Arguments, TakeTheNextWordAsAValueWhateverItLooksLike) {
  const Arguments arguments(packing(), Words{"--into", "--help", "--note", "--"});

  EXPECT_EQ(arguments.value("--into"), "--help");
  EXPECT_EQ(arguments.value("--note"), "--");
  EXPECT_FALSE(arguments.wantsHelp());
}

TEST(Arguments, TakeAllBehindTheFirstEqualsSignAsTheValue) {
  EXPECT_EQ(Arguments(packing(), Words{"--into=a=b"}).value("--into"), "a=b");
}

TEST(Arguments, TellAnEmptyTextFromNone) {
  EXPECT_EQ(Arguments(packing(), Words{"--note="}).value("--note"), "");
  EXPECT_EQ(Arguments(packing(), Words{"--note", ""}).value("--note"), "");
  EXPECT_EQ(errorOf({"--note"}), "--note needs a value");
}

TEST(Arguments, RefuseAnOptionWithoutAValue) {
  EXPECT_EQ(errorOf({"--into"}), "--into needs a value");
  EXPECT_EQ(errorOf({"--into="}), "--into needs a value");
  EXPECT_EQ(errorOf({"--into", ""}), "--into needs a value");
}

TEST(Arguments, RefuseToChooseBetweenTwoValues) {
  EXPECT_EQ(errorOf({"--into", "a", "--into", "b"}), "--into is there twice");
  EXPECT_EQ(errorOf({"--quiet", "--quiet"}), "(none)");
}

TEST(Arguments, RefuseWhatTheVerbDoesNotKnow) {
  EXPECT_EQ(errorOf({"--intro", "a"}), "unknown option '--intro'; did you mean '--into'?");
  EXPECT_EQ(errorOf({"--quiet=yes"}), "unknown option '--quiet=yes'");
  EXPECT_EQ(errorOf({"-q"}), "unknown option '-q'");
  EXPECT_EQ(errorOf({"-"}), "unknown option '-'");
}

TEST(Arguments, AreOneWordAtMost) {
  EXPECT_EQ(errorOf({"photos", "films"}), "one FOLDER at a time, not 'photos' and 'films'");
  EXPECT_EQ(errorOf({"photos"}, resting()), "rest takes no argument 'photos'");
}

TEST(Arguments, EndTheirOptionsAtTwoDashes) {
  EXPECT_EQ(Arguments(packing(), Words{"--", "--quiet"}).word(), "--quiet");
  EXPECT_EQ(Arguments(packing(), Words{"--", "--"}).word(), "--");
}

TEST(Arguments, ReadNothingBehindAWishForHelp) {
  EXPECT_TRUE(Arguments(resting(), Words{"--help", "--oops"}).wantsHelp());
  EXPECT_TRUE(Arguments(resting(), Words{"-h", "oops"}).wantsHelp());
}

TEST(Arguments, NameWhatIsMissing) {
  const Arguments none(packing(), Words{});
  const auto errorOfAsking = [](const auto& ask) {
    try {
      return ask();
    } catch (const UsageError& error) {
      return std::string(error.what());
    }
  };

  EXPECT_EQ(errorOfAsking([&] { return none.required("--into"); }), "pack needs --into");
  EXPECT_EQ(errorOfAsking([&] { return none.requiredWord(); }), "pack needs FOLDER");
}

TEST(NumberIn, IsAllOfTheTextOrNone) {
  EXPECT_EQ(numberIn("0"), 0U);
  EXPECT_EQ(numberIn("18446744073709551615"), ~std::uint64_t{0});
  EXPECT_EQ(numberIn("18446744073709551616"), std::nullopt);
  EXPECT_EQ(numberIn(""), std::nullopt);
  EXPECT_EQ(numberIn("7x"), std::nullopt);
  EXPECT_EQ(numberIn("-7"), std::nullopt);
  EXPECT_EQ(numberIn("+7"), std::nullopt);
  EXPECT_EQ(numberIn(" 7"), std::nullopt);
}

}  // namespace
}  // namespace karno::command_line
