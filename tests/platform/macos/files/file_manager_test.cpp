#include "platform/macos/files/file_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "../../support/temporary_folder.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

using karno::test::contentOf;
using karno::test::ElementsAre;
using karno::test::TemporaryFolder;
using ::testing::Contains;

objc::Id askedWithoutArguments(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

// Fails with the error that was set, if any, unless an answer was set.
objc::Boolean answerOrFail(objc::Sel selector, const std::string& arguments, objc::Id* error) {
  const bool isDone = recordAndAnswer(selector, arguments) != nullptr;
  *error = StandIns::current().answerTo(isDone ? "error left over" : "error");
  return isDone;
}

std::function<void(const std::string& place)> whenCopied;

objc::Boolean copyItem(objc::Id, objc::Sel selector, objc::Id from, objc::Id to, objc::Id* error) {
  if (whenCopied) whenCopied(shown(to));
  return answerOrFail(selector, shown(from) + " " + shown(to), error);
}

objc::Boolean trashItem(objc::Id, objc::Sel selector, objc::Id url, objc::Id* result, objc::Id* error) {
  const std::string place = result == nullptr ? "" : " and asks for the place";
  return answerOrFail(selector, shown(objc::send(url, "path")) + place, error);
}

Class managerClass() {
  static const Class made = StandInClass("StandInFileManager")
                                .classMethod("defaultManager", "@@:", askedWithoutArguments)
                                .method("copyItemAtPath:toPath:error:", "C@:@@^@", copyItem)
                                .method("trashItemAtURL:resultingItemURL:error:", "C@:@^@^@", trashItem)
                                .registerClass();
  return made;
}

objc::Id property(objc::Id, objc::Sel selector) { return answer(selector); }
objc::Integer code(objc::Id, objc::Sel) { return 640; }

Class errorClass() {
  static const Class made = StandInClass("StandInFileError")
                                .method("domain", "@@:", property)
                                .method("code", "q@:", code)
                                .method("localizedDescription", "@@:", property)
                                .method("userInfo", "@@:", property)
                                .registerClass();
  return made;
}

class MacFileManager : public testing::Test {
 protected:
  MacFileManager() { standIns_.answer("defaultManager", instanceOf(managerClass())); }

  ~MacFileManager() override { whenCopied = nullptr; }

  void failWithAnError() {
    standIns_.answer("error", instanceOf(errorClass()));
    standIns_.answer("domain", objc::string("NSCocoaErrorDomain"));
    standIns_.answer("localizedDescription", objc::string("The disk is full."));
  }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSFileManager", managerClass()};
  FoundationFileManager manager_;
};

TEST_F(MacFileManager, CopiesToAHiddenNameAndThenToItsPlace) {
  const TemporaryFolder folder;
  standIns_.answer("copyItemAtPath:toPath:error:", objc::string("done"));
  whenCopied = [](const std::string& place) { std::ofstream(place) << "copy"; };

  EXPECT_EQ(manager_.copyItem("/a/Karno.app", folder / "Karno.app"), std::nullopt);

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("defaultManager",
                          "copyItemAtPath:toPath:error: /a/Karno.app " + (folder / ".Karno.app.copying")));
  EXPECT_EQ(contentOf(folder / "Karno.app"), "copy");
}

TEST_F(MacFileManager, LeavesNothingOfACopyThatFails) {
  const TemporaryFolder folder;
  failWithAnError();
  whenCopied = [](const std::string& place) { std::ofstream(place) << "half"; };

  EXPECT_NE(manager_.copyItem("/a/Karno.app", folder / "Karno.app"), std::nullopt);

  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(MacFileManager, LetsTheManagerSayWhyItCopiesOverNothing) {
  const TemporaryFolder folder;
  folder.write("Karno.app", "old");
  failWithAnError();

  EXPECT_NE(manager_.copyItem("/a/Karno.app", folder / "Karno.app"), std::nullopt);

  EXPECT_THAT(standIns_.messages(),
              Contains("copyItemAtPath:toPath:error: /a/Karno.app " + (folder / "Karno.app")));
  EXPECT_EQ(contentOf(folder / "Karno.app"), "old");
}

TEST_F(MacFileManager, TellsWhyItCannotCopy) {
  failWithAnError();

  EXPECT_EQ(manager_.copyItem("/a", "/b"),
            Error("NSCocoaErrorDomain", 640, {{std::string(kLocalizedDescriptionKey), "The disk is full."}}));
}

TEST_F(MacFileManager, MovesToTheTrash) {
  standIns_.answer("trashItemAtURL:resultingItemURL:error:", objc::string("done"));

  EXPECT_EQ(manager_.trashItem("/a/Karno.app"), std::nullopt);
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("defaultManager", "trashItemAtURL:resultingItemURL:error: /a/Karno.app"));
}

TEST_F(MacFileManager, TellsWhyItCannotTrash) {
  failWithAnError();

  EXPECT_EQ(manager_.trashItem("/a"),
            Error("NSCocoaErrorDomain", 640, {{std::string(kLocalizedDescriptionKey), "The disk is full."}}));
}

TEST_F(MacFileManager, TellsWhichFileAnErrorSpeaksOf) {
  failWithAnError();
  standIns_.answer("userInfo", cocoa::objectOf(Value(Value::Dictionary{{"NSFilePath", "/a"}})));

  EXPECT_EQ(manager_.copyItem("/a", "/b"),
            Error("NSCocoaErrorDomain", 640,
                  {{"NSFilePath", "/a"}, {std::string(kLocalizedDescriptionKey), "The disk is full."}}));
}

TEST_F(MacFileManager, FailsWithoutAReason) {
  EXPECT_EQ(manager_.copyItem("/a", "/b"), Error("NSCocoaErrorDomain", 512));
}

// Only the answer counts: a method may leave anything in the error when it succeeds.
TEST_F(MacFileManager, HasSucceededWhateverIsLeftInTheError) {
  standIns_.answer("trashItemAtURL:resultingItemURL:error:", objc::string("done"));
  standIns_.answer("error left over", instanceOf(errorClass()));

  EXPECT_EQ(manager_.trashItem("/a"), std::nullopt);
}

TEST_F(MacFileManager, PassesAnErrorOnThatSaysNothing) {
  standIns_.answer("error", instanceOf(errorClass()));

  EXPECT_EQ(manager_.copyItem("/a", "/b"), Error("", 640, {{std::string(kLocalizedDescriptionKey), ""}}));
}

TEST_F(MacFileManager, FailsWhereThereIsNone) {
  standIns_.answer("defaultManager", objc::Object());

  EXPECT_EQ(manager_.copyItem("/a", "/b"), Error("NSCocoaErrorDomain", 512));
  EXPECT_EQ(manager_.trashItem("/a"), Error("NSCocoaErrorDomain", 512));
}

TEST_F(MacFileManager, GivesNothingBackThatItWasOnlyLent) {
  failWithAnError();
  const int countBefore = standIns_.liveCount();

  manager_.copyItem("/a", "/b");
  manager_.trashItem("/a");

  EXPECT_EQ(standIns_.liveCount(), countBefore);
  standIns_.answer("error", objc::Object());
  standIns_.answer("defaultManager", objc::Object());
  EXPECT_EQ(standIns_.liveCount(), 0);
}

TEST_F(MacFileManager, TakesWhatIsRaisedForAnError) {
  standIns_.raise();

  EXPECT_EQ(manager_.copyItem("/a", "/b")->localizedDescription(), "copy: raised by a stand-in");
  EXPECT_EQ(manager_.trashItem("/a")->localizedDescription(), "move to the Trash: raised by a stand-in");
}

}  // namespace
}  // namespace karno::platform::trial
