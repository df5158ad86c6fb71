#include "platform/macos/files/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../../support/scoped_environment.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

class MacUserFolders : public testing::Test {
 protected:
  const objc::AutoreleasePool pool_{};
  StandIns standIns_;
  const FoundationFiles files_{};
};

TEST_F(MacUserFolders, AreWhereTheSystemSaysWhateverHomeIs) {
  const karno::test::ScopedEnvironment home("HOME", "/elsewhere");
  standIns_.answer("search path", cocoa::objectOf(Value(Value::Array{"/Users/me/Library"})));

  EXPECT_THAT(files_.searchPath(UserFolder::Library), ElementsAre("/Users/me/Library"));
}

TEST_F(MacUserFolders, AreAskedForInTheDomainOfTheUser) {
  for (const UserFolder folder : {UserFolder::Library, UserFolder::Caches, UserFolder::Downloads,
                                  UserFolder::Applications, UserFolder::Trash}) {
    files_.searchPath(folder);
  }

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("search path 5 1 1", "search path 13 1 1", "search path 15 1 1",
                          "search path 1 1 1", "search path 102 1 1"));
}

TEST_F(MacUserFolders, AreTheUsualOnesWithoutAnAnswer) {
  const karno::test::ScopedEnvironment home("HOME", "/Users/me");

  EXPECT_THAT(files_.searchPath(UserFolder::Caches), ElementsAre("/Users/me/Library/Caches"));
}

}  // namespace
}  // namespace karno::platform::trial
