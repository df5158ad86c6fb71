#include "platform/error.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "printing.h"

namespace karno::platform {
namespace {

TEST(PlatformError, DescribesItselfWithDomainCodeAndMessage) {
  const Error error("NSCocoaErrorDomain", 260, {{"NSLocalizedDescription", "No such file."}});

  EXPECT_EQ(error.localizedDescription(), "No such file.");
  EXPECT_EQ(error.description(),
            "Error Domain=NSCocoaErrorDomain Code=260 \"No such file.\" "
            "UserInfo={NSLocalizedDescription=No such file.}");
}

TEST(PlatformError, OfPOSIXHasTheSystemsText) {
  const Error error = Error::posix(ENOENT);

  EXPECT_EQ(error.domain(), "NSPOSIXErrorDomain");
  EXPECT_EQ(error.code(), 2);
  EXPECT_EQ(error.localizedDescription(), "The operation couldn’t be completed. No such file or directory");
  EXPECT_EQ(error.description(), "Error Domain=NSPOSIXErrorDomain Code=2 \"No such file or directory\"");
}

TEST(PlatformError, OfAnotherDomainHasTheStandardSentence) {
  const Error error("it.vantul", -7);

  EXPECT_EQ(error.localizedDescription(), "The operation couldn’t be completed. (it.vantul error -7.)");
  EXPECT_EQ(error.description(), "Error Domain=it.vantul Code=-7 \"(null)\"");
}

TEST(PlatformError, WithoutUserInformationDiffersFromOneWithNone) {
  EXPECT_NE(Error("domain", 1), Error("domain", 1, {}));
  EXPECT_EQ(Error("domain", 1), Error("domain", 1));
}

TEST(PlatformResult, IsEitherAValueOrAnError) {
  const Result<int> value = 7;
  const Result<int> error = Error("domain", 1);

  ASSERT_TRUE(value);
  EXPECT_EQ(value.value(), 7);
  ASSERT_FALSE(error);
  EXPECT_EQ(error.error(), Error("domain", 1));
}

}  // namespace
}  // namespace karno::platform
