#include "platform/notices.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "elements_are.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;
using Told = std::pair<Notices::Level, std::string>;

Notices::Taker into(std::vector<Told>& told) {
  return [&told](Notices::Level level, std::string_view line) { told.emplace_back(level, line); };
}

TEST(PlatformNotices, AreToldWithTheirLevel) {
  std::vector<Told> told;
  Notices notices(into(told));

  notices.warn("lost");
  notices.inform("found");

  EXPECT_THAT(told,
              ElementsAre(Told(Notices::Level::Warning, "lost"), Told(Notices::Level::Information, "found")));
}

TEST(PlatformNotices, GoToOneTakerAlone) {
  std::vector<Told> before;
  std::vector<Told> after;
  Notices notices(into(before));

  notices.setTaker(into(after));
  notices.warn("lost");

  EXPECT_THAT(before, IsEmpty());
  EXPECT_THAT(after, ElementsAre(Told(Notices::Level::Warning, "lost")));
}

TEST(PlatformNotices, LetATakerTellAndHandOver) {
  std::vector<Told> after;
  Notices notices([&](Notices::Level, std::string_view) {
    notices.setTaker(into(after));
    notices.inform("told within");
  });

  notices.warn("lost");

  EXPECT_THAT(after, ElementsAre(Told(Notices::Level::Information, "told within")));
}

}  // namespace
}  // namespace karno::platform
