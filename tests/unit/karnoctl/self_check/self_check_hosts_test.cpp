#include "karnoctl/self_check/self_check.h"

#include <gtest/gtest.h>

#include <string>

namespace karno::karnoctl {
namespace {

TEST(SelfCheckOfHosts, TakesNamesWithAndWithoutAPort) {
  EXPECT_TRUE(looksLikeHost("updates.vantul.it"));
  EXPECT_TRUE(looksLikeHost("localhost"));
  EXPECT_TRUE(looksLikeHost("my-host.example:8443"));
  EXPECT_TRUE(looksLikeHost("host:65535"));
  EXPECT_TRUE(looksLikeHost(std::string(63, 'a')));
}

TEST(SelfCheckOfHosts, RefusesWhatIsNoHost) {
  EXPECT_FALSE(looksLikeHost(""));
  EXPECT_FALSE(looksLikeHost("https://updates.vantul.it"));
  EXPECT_FALSE(looksLikeHost("updates.vantul.it/feed"));
  EXPECT_FALSE(looksLikeHost("updates..it"));
  EXPECT_FALSE(looksLikeHost(".it"));
  EXPECT_FALSE(looksLikeHost("updates.it."));
  EXPECT_FALSE(looksLikeHost("two words"));
  EXPECT_FALSE(looksLikeHost("-a.it"));
  EXPECT_FALSE(looksLikeHost("a.it:"));
  EXPECT_FALSE(looksLikeHost("a.it:port"));
  EXPECT_FALSE(looksLikeHost("a-.it"));
  EXPECT_FALSE(looksLikeHost("a.it:123456"));
  EXPECT_FALSE(looksLikeHost(std::string(64, 'a')));
  EXPECT_FALSE(looksLikeHost(std::string(1'000'000, '.')));
}

TEST(SelfCheckOfHosts, TakesUpTo260Letters) {
  std::string labels;
  while (labels.size() < 256) labels += "abc.";

  EXPECT_TRUE(looksLikeHost(labels + "abcd"));
  EXPECT_FALSE(looksLikeHost(labels + "abcde"));
}

}  // namespace
}  // namespace karno::karnoctl
