#include "embedded_client/client_layout.h"

#include <gtest/gtest.h>

#include <array>

namespace karno::client {
namespace {

using Numbers = std::array<double, 4>;

Numbers numbers(const Rectangle& place) { return {place.x, place.y, place.width, place.height}; }

TEST(ClientLayout, PutsTheMessageButtonsIntoTwoColumnsOfFive) {
  const ClientLayout layout = clientLayout();

  EXPECT_EQ(numbers(layout.messageButton(0)), (Numbers{20, 208, 270, 28}));
  EXPECT_EQ(numbers(layout.messageButton(4)), (Numbers{20, 64, 270, 28}));
  EXPECT_EQ(numbers(layout.messageButton(5)), (Numbers{298, 208, 270, 28}));
  EXPECT_EQ(numbers(layout.messageButton(9)), (Numbers{298, 64, 270, 28}));
}

TEST(ClientLayout, StacksEverythingElseWithRoomBetween) {
  const ClientLayout layout = clientLayout();

  EXPECT_EQ(numbers(layout.quitButton), (Numbers{468, 20, 100, 28}));
  EXPECT_EQ(numbers(layout.reasonField), (Numbers{80, 252, 488, 24}));
  EXPECT_EQ(numbers(layout.settings), (Numbers{20, 292, 548, 90}));
  EXPECT_EQ(numbers(layout.icon), (Numbers{20, 398, 64, 64}));
  EXPECT_EQ(numbers(layout.origin), (Numbers{100, 410, 468, 18}));
  EXPECT_EQ(numbers(layout.headline), (Numbers{100, 432, 468, 18}));
  EXPECT_EQ(layout.width, 588);
  EXPECT_EQ(layout.height, 482);
}

}  // namespace
}  // namespace karno::client
