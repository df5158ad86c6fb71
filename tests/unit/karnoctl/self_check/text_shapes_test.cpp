#include "karnoctl/self_check/text_shapes.h"

#include <gtest/gtest.h>

#include <string>

#include "karnoctl/self_check/self_check_information.h"

namespace karno::karnoctl {
namespace {

TEST(TextShapes, KnowHosts) {
  EXPECT_TRUE(looksLikeHost("updates.vantul.it"));
  EXPECT_TRUE(looksLikeHost("localhost"));
  EXPECT_TRUE(looksLikeHost("my-host.example:8443"));
  EXPECT_TRUE(looksLikeHost("host:65535"));
  EXPECT_TRUE(looksLikeHost(std::string(63, 'a')));
}

TEST(TextShapes, KnowWhatIsNoHost) {
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

TEST(TextShapes, KnowHostsOfUpTo260Letters) {
  std::string labels;
  while (labels.size() < 256) labels += "abc.";

  EXPECT_TRUE(looksLikeHost(labels + "abcd"));
  EXPECT_FALSE(looksLikeHost(labels + "abcde"));
}

TEST(TextShapes, KnowPublicKeys) {
  EXPECT_TRUE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="));
  EXPECT_TRUE(looksLikePublicKey(publicKeyOfNobody()));
}

TEST(TextShapes, KnowWhatIsNoPublicKey) {
  EXPECT_FALSE(looksLikePublicKey(""));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo"));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHUR=="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURp="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURq="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURoA"));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHU o="));
}

}  // namespace
}  // namespace karno::karnoctl
