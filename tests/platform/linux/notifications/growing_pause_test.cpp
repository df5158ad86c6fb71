#include "platform/linux/notifications/growing_pause.h"

#include <gmock/gmock.h>

#include "elements_are.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using std::chrono::milliseconds;

std::vector<milliseconds> take(GrowingPause& pause, int count) {
  std::vector<milliseconds> taken;
  for (int number = 0; number < count; ++number) taken.push_back(pause.next());
  return taken;
}

TEST(GrowingPauses, DoubleUpToTheLongest) {
  GrowingPause pause(milliseconds(1'000), milliseconds(30'000));

  const std::vector<milliseconds> taken = take(pause, 7);

  EXPECT_THAT(taken,
              ElementsAre(milliseconds(1'000), milliseconds(2'000), milliseconds(4'000), milliseconds(8'000),
                          milliseconds(16'000), milliseconds(30'000), milliseconds(30'000)));
}

TEST(GrowingPauses, BeginAnewAfterASuccess) {
  GrowingPause pause(milliseconds(1'000), milliseconds(30'000));
  take(pause, 4);

  pause.reset();

  EXPECT_THAT(take(pause, 2), ElementsAre(milliseconds(1'000), milliseconds(2'000)));
}

}  // namespace
}  // namespace karno::platform
