#include "platform/linux/web/curl_library.h"

#include <gtest/gtest.h>

namespace karno::platform {
namespace {

TEST(CurlLibrary, IsLoadedOnce) {
  const Result<CurlLibrary>& first = CurlLibrary::instance();
  const Result<CurlLibrary>& second = CurlLibrary::instance();

  EXPECT_TRUE(first);
  EXPECT_EQ(&first, &second);
}

TEST(CurlLibrary, SaysThatItIsNotThere) {
  const auto library = CurlLibrary::load("libkarno-none.so.1");

  ASSERT_FALSE(library);
  EXPECT_EQ(library.error().domain(), "NSURLErrorDomain");
  EXPECT_EQ(library.error().code(), -1);
  EXPECT_EQ(
      library.error().localizedDescription(),
      "libkarno-none.so.1 cannot be used: libkarno-none.so.1: cannot open shared object file: No such file "
      "or directory.");
}

// The mathematical library is on every system and knows nothing of URLs.
TEST(CurlLibrary, IsNotAnyLibrary) { EXPECT_FALSE(CurlLibrary::load("libm.so.6")); }

}  // namespace
}  // namespace karno::platform
