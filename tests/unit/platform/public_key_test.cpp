#include "platform/public_key.h"

#include <gtest/gtest.h>

#include "karnoctl/self_check/self_check.h"

namespace karno::platform {
namespace {

TEST(PublicKey, IsBase64OfItsBytes) {
  EXPECT_TRUE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="));
  EXPECT_TRUE(looksLikePublicKey(karnoctl::publicKeyOfNobody()));
}

TEST(PublicKey, IsNothingElse) {
  EXPECT_FALSE(looksLikePublicKey(""));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo"));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHUR=="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURp="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURq="));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURoA"));
  EXPECT_FALSE(looksLikePublicKey("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHU o="));
}

}  // namespace
}  // namespace karno::platform
