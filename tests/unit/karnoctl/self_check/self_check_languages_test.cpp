#include <gtest/gtest.h>

#include <string>

#include "self_check_fixture.h"

namespace karno::karnoctl {
namespace {

using platform::Value;
using test::CompleteBundle;

using KarnoctlSelfCheckOfLanguages = test::SelfCheckedMachine;

std::size_t countOf(const std::string& words, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1)) ++count;
  return count;
}

TEST_F(KarnoctlSelfCheckOfLanguages, PassesOverWhatIsNoNameOfAFolder) {
  const std::string said =
      saidAboutInformation("CFBundleLocalizations", Value::Array{"en", "de", "", "a/b", ".hidden"});

  EXPECT_TRUE(said.starts_with("Nothing is wrong")) << said;
}

TEST_F(KarnoctlSelfCheckOfLanguages, LooksAtTwoHundredAtMost) {
  Value::Array languages{"en"};
  for (int number = 0; number < 300; ++number) languages.emplace_back("l" + std::to_string(number));

  const std::string said = saidAboutInformation("CFBundleLocalizations", languages);

  EXPECT_EQ(countOf(".lproj/Strings.json is missing", said), 199U);  // and the base
}

TEST_F(KarnoctlSelfCheckOfLanguages, TakesAnEmptyTextOfTheMoveForNone) {
  bundle_.writeList(CompleteBundle::table("de", "MoveApplication.strings"), {{"Do Not Move", ""}});

  EXPECT_EQ(said(),
            "Contents/Resources/de.lproj/MoveApplication.strings has no text for \"Do Not Move\": the base "
            "language stands in.\n");
}

}  // namespace
}  // namespace karno::karnoctl
