#include "platform/cocoa/runtime_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "../support/temporary_folder.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/class_builder.h"

namespace karno::platform::cocoa {
namespace {

namespace fs = std::filesystem;

using karno::test::ElementsAre;
using testing::Contains;
using testing::IsEmpty;

const CocoaRuntimeCheck kOnGNUstep(objc::Where::GNUstepOnly);

Class standInForAlerts() {
  static const Class made =
      objc::ClassBuilder("KarnoTestSilentAlert", objc::classNamed("NSObject")).registerClass();
  return made;
}

TEST(RuntimeCheck, FindsEveryMessageThatThisSystemIsSent) {
  const MessageCensus census = kOnGNUstep.systemMessages();

  EXPECT_THAT(census.missing, IsEmpty());
  EXPECT_THAT(census.doneWithout, IsEmpty());
  EXPECT_GT(census.lookedFor, 100U);
}

TEST(RuntimeCheck, NamesTheMessagesThatAClassHasLost) {
  const objc::ClassOverride override("NSAlert", standInForAlerts());

  EXPECT_THAT(
      kOnGNUstep.systemMessages().missing,
      ElementsAre("-[NSAlert setAlertStyle:]", "-[NSAlert setMessageText:]", "-[NSAlert setInformativeText:]",
                  "-[NSAlert addButtonWithTitle:]", "-[NSAlert runModal]"));
}

// GNUstep stands in for a Mac that has lost what GNUstep never had.
TEST(RuntimeCheck, TellsWhatIsDoneWithoutFromWhatIsMissed) {
  const MessageCensus census = CocoaRuntimeCheck(objc::Where::MacOSOnly).systemMessages();

  EXPECT_THAT(census.doneWithout,
              ElementsAre("-[NSApplication activate]", "-[NSApplication yieldActivationToApplication:]",
                          "-[NSApplication setActivationPolicy:]", "-[NSWindow setRestorable:]",
                          "-[NSView setAccessibilityLabel:]"));
  EXPECT_THAT(census.missing, Contains("-[NSFileManager trashItemAtURL:resultingItemURL:error:]"));
}

TEST(RuntimeCheck, SaysThatThereIsNoFrameworkToLoad) {
  const auto census = kOnGNUstep.updaterMessages("/nowhere/Sparkle.framework");

  ASSERT_FALSE(census);
  EXPECT_EQ(census.error().localizedDescription(),
            "The framework cannot be loaded: /nowhere/Sparkle.framework");
}

TEST(RuntimeCheck, SeesExceptionsOfTheSystemBecomeErrors) {
  EXPECT_TRUE(kOnGNUstep.exceptionsBecomeErrors());
}

TEST(RuntimeCheck, KnowsItsOwnProgram) {
  EXPECT_EQ(kOnGNUstep.programPath(), fs::canonical("/proc/self/exe").string());
  EXPECT_TRUE(kOnGNUstep.isExecutable(kOnGNUstep.programPath()));
}

TEST(RuntimeCheck, TellsProgramsFromOtherFiles) {
  const test::TemporaryFolder folder;
  folder.write("program", "#!/bin/sh\n");
  fs::permissions(folder / "program", fs::perms(0755));
  folder.write("text", "text");
  fs::create_symlink("program", folder / "link");

  EXPECT_TRUE(kOnGNUstep.isExecutable(folder / "program"));
  EXPECT_TRUE(kOnGNUstep.isExecutable(folder / "link"));
  EXPECT_FALSE(kOnGNUstep.isExecutable(folder / "text"));
  EXPECT_FALSE(kOnGNUstep.isExecutable(folder / "nowhere"));
  EXPECT_FALSE(kOnGNUstep.isExecutable(folder.path()));
}

}  // namespace
}  // namespace karno::platform::cocoa
