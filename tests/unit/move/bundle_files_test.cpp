#include "move/bundle_files.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Error;
using test::kDownloaded;
using test::kInstalled;
using test::kTrashed;
using test::MovingMachine;
using ::testing::IsEmpty;

constexpr const char* kTrashScript =
    "\t\t\t\t\t\t\t\t\t\tset theFile to POSIX file \"/Users/tester/Downloads/Karno.app\" \n"
    "\t\t\t\t\t\t\t\t\t   \ttell application \"Finder\" \n"
    "\t\t\t\t\t\t\t\t\t  \t\tmove theFile to trash \n"
    "\t\t\t\t\t\t\t\t\t  \tend tell";

constexpr const char* kScriptError =
    "{NSAppleScriptErrorMessage = \"Finder got an error: The operation can’t be completed.\";}";

const Error kNotPermitted = Error(std::string(platform::kPOSIXErrorDomain), EPERM,
                                  {{std::string(platform::kLocalizedDescriptionKey), "You may not."}});

TEST(TrashItem, IsDoneByTheFileManager) {
  MovingMachine machine;

  const bool trashed = trashItem(kDownloaded);

  EXPECT_TRUE(trashed);
  EXPECT_EQ(machine.launcherAt(kTrashed), "new launcher");
  EXPECT_THAT(machine.appleScripts.executed, IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(TrashItem, IsDoneByTheFinderWhenTheFileManagerFails) {
  MovingMachine machine;
  machine.fileManager.trashFailures.emplace(kDownloaded, kNotPermitted);

  const bool trashed = trashItem(kDownloaded);

  EXPECT_TRUE(trashed);
  EXPECT_THAT(machine.appleScripts.executed, ElementsAre(kTrashScript));
  EXPECT_THAT(machine.console(), IsEmpty());
}

// The text of the script must not end where the path has a quotation mark.
TEST(TrashItem, GivesTheFinderAnyPathAsItsScriptsSpellIt) {
  MovingMachine machine;
  machine.systemVersion.appKit = 1186.9;

  trashItem("/Users/tester/x\" & (do shell script \"id\") & \"\\.app");

  ASSERT_EQ(machine.appleScripts.executed.size(), 1U);
  EXPECT_THAT(machine.appleScripts.executed.front(),
              ::testing::HasSubstr("set theFile to POSIX file \"/Users/tester/x\\\" & (do shell script "
                                   "\\\"id\\\") & \\\"\\\\.app\" \n"));
}

TEST(TrashItem, IsDoneByTheFinderOnASystemThatIsTooOld) {
  MovingMachine machine;
  machine.systemVersion.appKit = 1186.9;

  const bool trashed = trashItem(kDownloaded);

  EXPECT_TRUE(trashed);
  EXPECT_THAT(machine.fileManager.trashed, IsEmpty());
  EXPECT_THAT(machine.appleScripts.executed, ElementsAre(kTrashScript));
}

TEST(TrashItem, IsDoneByTheFileManagerOnTheFirstSystemThatCan) {
  MovingMachine machine;
  machine.systemVersion.appKit = 1187;

  const bool trashed = trashItem(kDownloaded);

  EXPECT_TRUE(trashed);
  EXPECT_THAT(machine.appleScripts.executed, IsEmpty());
}

TEST(TrashItem, SaysWhyItFailed) {
  MovingMachine machine;
  machine.fileManager.trashFailures.emplace(kDownloaded, kNotPermitted);
  machine.appleScripts.error = kScriptError;

  const bool trashed = trashItem(kDownloaded);

  EXPECT_FALSE(trashed);
  EXPECT_THAT(machine.console(), ElementsAre(std::string("Trash AppleScript error: ") + kScriptError,
                                             "ERROR -- Could not trash '/Users/tester/Downloads/Karno.app'"));
}

TEST(CopyBundle, CopiesAllOfIt) {
  MovingMachine machine;

  const bool copied = copyBundle(kDownloaded, kInstalled);

  EXPECT_TRUE(copied);
  EXPECT_EQ(machine.launcherAt(kInstalled), "new launcher");
  EXPECT_EQ(machine.files.destinationOfSymbolicLink("/Applications/Karno.app/Contents/Current").value(),
            "MacOS");
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(CopyBundle, SaysWhyItFailed) {
  MovingMachine machine;
  machine.fileManager.copyFailures.emplace(kInstalled, kNotPermitted);

  const bool copied = copyBundle(kDownloaded, kInstalled);

  EXPECT_FALSE(copied);
  EXPECT_THAT(
      machine.console(),
      ElementsAre("ERROR -- Could not copy '/Users/tester/Downloads/Karno.app' to "
                  "'/Applications/Karno.app' (Error Domain=NSPOSIXErrorDomain Code=1 \"You may not.\" "
                  "UserInfo={NSLocalizedDescription=You may not.})"));
}

TEST(DeleteOrTrash, Deletes) {
  MovingMachine machine;

  const bool gone = deleteOrTrash(kDownloaded);

  EXPECT_TRUE(gone);
  EXPECT_FALSE(machine.files.fileExists(kDownloaded));
  EXPECT_THAT(machine.fileManager.trashed, IsEmpty());
}

TEST(DeleteOrTrash, TrashesWhatCannotBeDeleted) {
  MovingMachine machine;
  machine.files.failRemove(kDownloaded, EPERM);

  const bool gone = deleteOrTrash(kDownloaded);

  EXPECT_TRUE(gone);
  EXPECT_EQ(machine.launcherAt(kTrashed), "new launcher");
  EXPECT_THAT(machine.console(),
              ElementsAre("WARNING -- Could not delete '/Users/tester/Downloads/Karno.app': " +
                          Error::posix(EPERM).localizedDescription()));
}

// From there nothing can ever be deleted, which is no news.
TEST(DeleteOrTrash, DoesNotWarnOfATranslocatedBundle) {
  const std::string translocated = "/private/var/folders/x1/T/AppTranslocation/5D4C/d/Karno.app";
  MovingMachine machine(translocated);
  machine.files.failRemove(translocated, EROFS);

  const bool gone = deleteOrTrash(translocated);

  EXPECT_TRUE(gone);
  EXPECT_THAT(machine.fileManager.trashed, ElementsAre(translocated));
  EXPECT_THAT(machine.console(), IsEmpty());
}

class BundleBesideATranslocation : public ::testing::TestWithParam<const char*> {};

// Only a folder of exactly that name is the system's.
TEST_P(BundleBesideATranslocation, IsWarnedOf) {
  const std::string path = GetParam();
  MovingMachine machine(path);
  machine.files.failRemove(path, EROFS);

  deleteOrTrash(path);

  EXPECT_THAT(machine.console(), ElementsAre("WARNING -- Could not delete '" + path +
                                             "': " + Error::posix(EROFS).localizedDescription()));
}

INSTANTIATE_TEST_SUITE_P(DeleteOrTrash, BundleBesideATranslocation,
                         ::testing::Values("/Users/tester/MyAppTranslocation/Karno.app",
                                           "/Users/tester/AppTranslocation 2/Karno.app",
                                           "/Users/tester/AppTranslocation"));

TEST(DeleteOrTrash, FailsWhenBothFail) {
  MovingMachine machine;
  machine.files.failRemove(kDownloaded, EPERM);
  machine.fileManager.trashFailures.emplace(kDownloaded, kNotPermitted);
  machine.appleScripts.error = kScriptError;

  const bool gone = deleteOrTrash(kDownloaded);

  EXPECT_FALSE(gone);
  EXPECT_THAT(machine.console(),
              ElementsAre("WARNING -- Could not delete '/Users/tester/Downloads/Karno.app': " +
                              Error::posix(EPERM).localizedDescription(),
                          std::string("Trash AppleScript error: ") + kScriptError,
                          "ERROR -- Could not trash '/Users/tester/Downloads/Karno.app'"));
}

}  // namespace
}  // namespace karno
