#include "installer/bundle_facts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "information_lists.h"
#include "property_list_texts.h"
#include "support/made_bundle.h"
#include "temporary_folder.h"

namespace karno::installer {
namespace {

using test::propertyList;
using test::stringEntry;

const BundleFacts kFacts{.identifier = "it.vantul.KarnoWrapper", .version = "2", .executable = "Karno"};

std::string said(const Outcome<BundleFacts>& facts) {
  return facts ? facts.value().identifier + " " + facts.value().version + " " + facts.value().executable
               : std::to_string(static_cast<int>(facts.error().code)) + " " + facts.error().text;
}

std::string said(const MaybeFailure& failure) {
  return failure ? std::to_string(static_cast<int>(failure->code)) + " " + failure->text : "an update";
}

std::string listWithout(const std::string& key) {
  return propertyList((key == "CFBundleIdentifier" ? "" : stringEntry("CFBundleIdentifier", "a.b")) +
                      (key == "CFBundleVersion" ? "" : stringEntry("CFBundleVersion", "1")) +
                      (key == "CFBundleExecutable" ? "" : stringEntry("CFBundleExecutable", "x")));
}

TEST(BundleFacts, AreReadFromAPropertyList) {
  EXPECT_EQ(said(parseBundleFacts(test::infoPlist({}))), "it.vantul.KarnoWrapper 2 Karno");
}

TEST(BundleFacts, AreTheEntriesOfTheRootOnly) {
  const std::string inner = "<key>Inner</key><dict>" + stringEntry("CFBundleVersion", "9") + "</dict>";

  EXPECT_EQ(said(parseBundleFacts(propertyList(inner + stringEntry("CFBundleIdentifier", "a.b") +
                                               stringEntry("CFBundleVersion", "1 &amp; 2") +
                                               stringEntry("CFBundleExecutable", "x")))),
            "a.b 1 & 2 x");
}

TEST(BundleFacts, MustAllBeThere) {
  EXPECT_EQ(said(parseBundleFacts(listWithout("CFBundleIdentifier"))), "3002 The bundle has no identifier.");
  EXPECT_EQ(said(parseBundleFacts(listWithout("CFBundleVersion"))), "3002 The bundle has no version.");
  EXPECT_EQ(said(parseBundleFacts(listWithout("CFBundleExecutable"))),
            "3002 The bundle names no executable.");
}

TEST(BundleFacts, MustBeStrings) {
  EXPECT_EQ(said(parseBundleFacts(propertyList("<key>CFBundleIdentifier</key><integer>1</integer>"))),
            "3002 The bundle has no identifier.");
}

TEST(BundleFacts, NameNoExecutableElsewhere) {
  const std::string others = stringEntry("CFBundleIdentifier", "a.b") + stringEntry("CFBundleVersion", "1");

  EXPECT_EQ(said(parseBundleFacts(propertyList(others + stringEntry("CFBundleExecutable", "../../x")))),
            "3002 The bundle names no executable.");
  EXPECT_EQ(said(parseBundleFacts(propertyList(others + stringEntry("CFBundleExecutable", "..")))),
            "3002 The bundle names no executable.");
  EXPECT_EQ(said(parseBundleFacts(propertyList(others + stringEntry("CFBundleExecutable", ".")))),
            "3002 The bundle names no executable.");
}

class BundleFactsOf : public testing::TestWithParam<test::InformationList> {};

TEST_P(BundleFactsOf, AnUnusualListAreWhatTheLauncherFinds) {
  EXPECT_EQ(said(parseBundleFacts(GetParam().bytes)), GetParam().name + " " + GetParam().version + " Karno");
}

INSTANTIATE_TEST_SUITE_P(Each, BundleFactsOf, testing::ValuesIn(test::informationLists()),
                         [](const auto& each) { return each.param.form; });

TEST(BundleFacts, AreNotReadFromWhatIsNoListWithADictionary) {
  constexpr const char* kNoList = "3002 The bundle's Info.plist is not a property list with a dictionary.";

  EXPECT_EQ(said(parseBundleFacts("")), kNoList);
  EXPECT_EQ(said(parseBundleFacts(std::string("bplist00\xD1\x01\x02Q\x00", 13))), kNoList);
  EXPECT_EQ(said(parseBundleFacts("<plist><dict><key>CFBundleIdentifier</key><string>a")), kNoList);
  EXPECT_EQ(said(parseBundleFacts(propertyList("<key>CFBundleIdentifier</key>"))), kNoList);
  EXPECT_EQ(said(parseBundleFacts("<plist><array/></plist>")), kNoList);
  EXPECT_EQ(said(parseBundleFacts("<html/>")), kNoList);
}

TEST(BundleFacts, OfABundleNeedItsExecutable) {
  const test::TemporaryFolder folder;
  test::writeItems(folder.path(), test::bundleItems());
  const std::string executable = folder / "Karno.app/Contents/MacOS/Karno";
  constexpr const char* kNone = "3002 The bundle's executable is missing or cannot be executed.";

  EXPECT_EQ(said(readBundleFacts(folder / "Karno.app")), "it.vantul.KarnoWrapper 2 Karno");
  ::chmod(executable.c_str(), 0644);
  EXPECT_EQ(said(readBundleFacts(folder / "Karno.app")), kNone);
  std::filesystem::remove(executable);
  EXPECT_EQ(said(readBundleFacts(folder / "Karno.app")), kNone);
  std::filesystem::create_directory(executable);
  EXPECT_EQ(said(readBundleFacts(folder / "Karno.app")), kNone);
}

TEST(BundleFacts, OfWhatIsNoBundleCannotBeRead) {
  const test::TemporaryFolder folder;

  EXPECT_EQ(said(readBundleFacts(folder.path())), "3002 The bundle's Info.plist cannot be read.");
}

TEST(BundleFacts, MakeAnUpdateWhenTheyAreNewer) {
  EXPECT_EQ(said(checkIsUpdate({kFacts.identifier, "10", "Karno"}, kFacts)), "an update");
  EXPECT_EQ(said(checkIsUpdate({kFacts.identifier, "2.0.1", "Other"}, kFacts)), "an update");
}

TEST(BundleFacts, MakeNoUpdateWhenTheyAreNotNewer) {
  EXPECT_EQ(said(checkIsUpdate(kFacts, kFacts)), "4006 The update has version 2, which is not newer than 2.");
  EXPECT_EQ(said(checkIsUpdate({kFacts.identifier, "1.9", "Karno"}, kFacts)),
            "4006 The update has version 1.9, which is not newer than 2.");
}

TEST(BundleFacts, MakeNoUpdateOfSomethingElse) {
  EXPECT_EQ(said(checkIsUpdate({"it.vantul.Other", "10", "Karno"}, kFacts)),
            "3002 The update is of \"it.vantul.Other\", not of \"it.vantul.KarnoWrapper\".");
}

TEST(BundleFacts, AreToldInOneLineWhateverTheyHold) {
  EXPECT_EQ(said(checkIsUpdate({"a\nb", "10", "Karno"}, {"c\nd", "1", "Karno"})),
            "3002 The update is of \"a?b\", not of \"c?d\".");
  EXPECT_EQ(said(checkIsUpdate({"a", "1\n0", "Karno"}, {"a", "2\n0", "Karno"})),
            "4006 The update has version 1?0, which is not newer than 2?0.");
}

}  // namespace
}  // namespace karno::installer
