#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ipc/wrapper_protocol.h"
#include "karnoctl_documents.h"

namespace karno::karnoctl {
namespace {

using test::ManualPage;
using test::Words;
using ::testing::Contains;
using ::testing::ElementsAreArray;

TEST(KarnoctlManualPage, HasAllMessagesInTheOrderOfTheProtocol) {
  const ManualPage page;

  EXPECT_THAT(page.wordsOf("post"), ElementsAreArray(kWrapperMessages));
}

TEST(KarnoctlManualPage, NamesWhatIsNoVerbOfTheTable) {
  const ManualPage page;

  EXPECT_THAT(page.synopses(), Contains("help [VERB]"));
  EXPECT_THAT(page.synopses(), Contains("--help"));
  EXPECT_THAT(page.synopses(), Contains("--version"));
}

class KarnoctlManualPageVerb : public testing::TestWithParam<std::string> {};

TEST_P(KarnoctlManualPageVerb, IsUsedAsTheToolSays) {
  const ManualPage page;

  EXPECT_THAT(page.synopses(), Contains(test::usageOfTool(GetParam())));
}

// That every verb takes --help is said once, before the verbs.
TEST_P(KarnoctlManualPageVerb, HasItsOptionsAndNoOthers) {
  const ManualPage page;
  test::WordSet options = page.optionsOf(GetParam());
  options.insert("--help");

  EXPECT_EQ(options, test::optionsOfTool(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Each, KarnoctlManualPageVerb, testing::ValuesIn(test::verbsOfTool()));

}  // namespace
}  // namespace karno::karnoctl
