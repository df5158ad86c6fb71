#include "platform/linux/updater/installer_answer.h"

#include <gtest/gtest.h>

namespace karno::platform::updates {
namespace {

TEST(InstallerAnswer, TellsOfProgress) {
  InstallerAnswer answer;

  const auto amount = answer.take("progress 512 5000000000");

  ASSERT_TRUE(amount.has_value());
  EXPECT_EQ(amount->done, 512U);
  EXPECT_EQ(amount->total, 5'000'000'000U);
}

TEST(InstallerAnswer, IsThePathThatIsReady) {
  InstallerAnswer answer;

  answer.take("progress 1 2");
  answer.take("ready /a folder/Karno.app");

  ASSERT_TRUE(answer.outcome());
  EXPECT_EQ(answer.outcome().value(), "/a folder/Karno.app");
}

TEST(InstallerAnswer, IsTheFailureWithItsCodeAndItsWords) {
  InstallerAnswer answer;

  answer.take("failed 3001 The signature is not good.");

  ASSERT_FALSE(answer.outcome());
  EXPECT_EQ(answer.outcome().error().domain(), "SUSparkleErrorDomain");
  EXPECT_EQ(answer.outcome().error().code(), 3001);
  EXPECT_EQ(answer.outcome().error().localizedDescription(), "The signature is not good.");
}

TEST(InstallerAnswer, OfAFailureIsNeverReady) {
  InstallerAnswer answer;

  answer.take("ready /Karno.app");
  answer.take("failed 3000 No.");

  EXPECT_FALSE(answer.outcome());
}

class NoAnswer : public ::testing::TestWithParam<const char*> {};

TEST_P(NoAnswer, IsAFailureToUnpack) {
  InstallerAnswer answer;

  EXPECT_FALSE(answer.take(GetParam()).has_value());

  ASSERT_FALSE(answer.outcome());
  EXPECT_EQ(answer.outcome().error().code(), 3000);
}

INSTANTIATE_TEST_SUITE_P(Lines, NoAnswer,
                         ::testing::Values("", "ready", "ready ", "ready Karno.app", "failed", "failed x",
                                           "failed 7", "progress", "progress 1", "progress a b",
                                           "progress 1 2 3", "progress -1 2", "readyish /a"));

}  // namespace
}  // namespace karno::platform::updates
