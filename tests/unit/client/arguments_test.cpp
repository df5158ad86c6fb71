#include "embedded_client/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace karno::client {
namespace {

using Words = std::vector<std::string>;

TEST(ClientArguments, TakeTheParentFromOneWordWithABlankInIt) {
  EXPECT_EQ(parentFromArguments(Words{"--parent 4711"}), 4711);
}

TEST(ClientArguments, ReachTheLargestProcessIdentifier) {
  EXPECT_EQ(parentFromArguments(Words{"--parent 2147483647"}), 2147483647);
  EXPECT_EQ(parentFromArguments(Words{"--parent 2147483648"}), std::nullopt);
}

TEST(ClientArguments, RefuseTwoWords) {
  EXPECT_EQ(parentFromArguments(Words{"--parent", "4711"}), std::nullopt);
}

TEST(ClientArguments, RefuseASecondArgument) {
  EXPECT_EQ(parentFromArguments(Words{"--parent 4711", "--verbose"}), std::nullopt);
}

TEST(ClientArguments, RefuseNone) { EXPECT_EQ(parentFromArguments(Words{}), std::nullopt); }

TEST(ClientArguments, RefuseWhatIsNoProcessIdentifier) {
  EXPECT_EQ(parentFromArguments(Words{"--parent "}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"--parent 0"}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"--parent -4711"}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"--parent 4711 "}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"--parent  4711"}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"--parent=4711"}), std::nullopt);
  EXPECT_EQ(parentFromArguments(Words{"4711"}), std::nullopt);
}

}  // namespace
}  // namespace karno::client
