#include "platform/standard_folders.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "world.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::StandardFolder;

class StandardFoldersContract : public Contract {
 protected:
  const std::string home_ = services_.files.homeDirectory();
  platform::StandardFolders& folders_ = services_.standardFolders;
};

TEST_P(StandardFoldersContract, AreThoseOfTheUserTheMachineTheNetworkAndTheSystem) {
  EXPECT_THAT(folders_.inAllDomains(StandardFolder::Applications),
              ElementsAre(home_ + "/Applications", here_.onMachine("/Applications"),
                          here_.onMachine("/Network/Applications"), here_.onMachine("/System/Applications")));
  EXPECT_THAT(folders_.inAllDomains(StandardFolder::Downloads), ElementsAre(home_ + "/Downloads"));
}

TEST_P(StandardFoldersContract, AreNamedThoughTheyAreNotThere) {
  EXPECT_TRUE(folders_.localApplications().ends_with("/Applications"));
  EXPECT_FALSE(services_.files.fileExists(home_ + "/Downloads"));
}

INSTANTIATE_TEST_SUITE_P(Fake, StandardFoldersContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, StandardFoldersContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
