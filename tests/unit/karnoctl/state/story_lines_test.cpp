#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "karnoctl/state/launcher_story.h"
#include "logged_texts.h"

namespace karno::karnoctl {
namespace {

using ::testing::IsEmpty;

// What the story is made of stands in the launcher's own sources.
TEST(LauncherStory, IsMadeOfLinesThatTheLauncherLogs) {
  const std::vector<test::LoggedText> texts = test::loggedTexts();
  std::vector<std::string_view> unknown = linesOfStories();

  std::erase_if(unknown, [&](std::string_view line) { return test::isBegunBySome(line, texts); });

  EXPECT_THAT(unknown, IsEmpty());
  EXPECT_FALSE(test::isBegunBySome("Startup[LAUNCH] Launches ", texts));
  EXPECT_FALSE(test::isBegunBySome("Startup[FUSE] Fuse is installed.", texts));
}

}  // namespace
}  // namespace karno::karnoctl
