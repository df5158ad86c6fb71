#include "platform/linux/preferences/user_defaults.h"
#include "platform/posix/console_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "../../support/forked_process.h"
#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "../../support/temporary_folder.h"
#include "platform/linux/bundles/bundles.h"
#include "platform/linux/files/property_list_file.h"

namespace karno::platform {
namespace {

using test::ForkedProcess;
using test::propertyList;
using test::ScopedEnvironment;
using test::StandardErrorCapture;
using test::stringEntry;
using test::TemporaryFolder;

constexpr const char* kSuite = "it.vantul.karno";
constexpr const char* kDefaultsFile = "Library/Preferences/it.vantul.karno.plist";

class LinuxUserDefaultsTest : public testing::Test {
 protected:
  std::string path() const { return home / kDefaultsFile; }
  std::string write(const std::string& elements) const {
    return home.write(kDefaultsFile, propertyList(elements));
  }
  std::unique_ptr<UserDefaults> suite() { return store.makeSuite(kSuite); }
  Value::Dictionary stored() const { return readDictionary(path()).value(); }

  // Changes each of its keys ten times, 1000 writes in all, and looks after every write whether the one
  // before is still there: another writer that stores what it read too early would undo just that one.
  int numberOfLostWrites(const std::string& prefix) {
    const auto defaults = suite();
    int lost = 0;
    std::string before;
    for (int write = 0; write < 10 * kKeys; ++write) {
      const bool value = write / kKeys % 2 == 0;
      const std::string key = prefix + std::to_string(write % kKeys);
      defaults->setBool(value, key);
      const bool valueBefore = write % kKeys == 0 ? !value : value;
      if (!before.empty() && defaults->objectForKey(before) != Value(valueBefore)) ++lost;
      before = key;
    }
    return std::min(lost, 100);
  }

  static constexpr int kKeys = 100;

  TemporaryFolder home;
  ScopedEnvironment homeVariable{"HOME", home.path()};
  LinuxBundles bundles;
  Notices notices{[](Notices::Level, std::string_view line) { writeConsoleLine(line); }};
  LinuxUserDefaultsStore store{bundles, notices};
};

TEST_F(LinuxUserDefaultsTest, KeepValuesOfEveryTypeThatOthersStored) {
  write(stringEntry("text", "Grüße") +
        "<key>number</key><real>0.5</real><key>date</key><date>2024-03-05T14:07:09Z</date>"
        "<key>list</key><array><integer>1</integer></array>");
  const Value::Dictionary before = stored();

  suite()->setBool(true, "added");

  Value::Dictionary expected = before;
  expected.emplace("added", true);
  EXPECT_EQ(before.size(), 4U);
  EXPECT_EQ(stored(), expected);
}

TEST_F(LinuxUserDefaultsTest, WriteAFileForTheUserAlone) {
  suite()->setBool(true, "key");

  struct stat status = {};
  ASSERT_EQ(::stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(LinuxUserDefaultsTest, LeaveNoTemporaryFileBehind) {
  suite()->setBool(true, "key");

  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(home / "Library/Preferences")) {
    names.push_back(entry.path().filename());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre("it.vantul.karno.plist", "it.vantul.karno.plist.lock"));
}

TEST_F(LinuxUserDefaultsTest, SeeWhatAnotherProcessWroteAtTheNextRead) {
  const auto defaults = suite();
  ASSERT_FALSE(defaults->boolForKey("key"));

  ForkedProcess([this] { return suite()->setBool(true, "key"), 0; }).exitStatus();
  EXPECT_TRUE(defaults->boolForKey("key"));

  ForkedProcess([this] { return suite()->setBool(false, "key"), 0; }).exitStatus();
  EXPECT_FALSE(defaults->boolForKey("key"));
}

TEST_F(LinuxUserDefaultsTest, SeeAFileThatChangesInPlaceWithoutChangingItsSize) {
  const auto defaults = suite();

  for (int round = 0; round < 200; ++round) {
    write("<key>key</key><integer>1</integer>");
    EXPECT_EQ(defaults->objectForKey("key"), Value(1));
    write("<key>key</key><integer>2</integer>");
    EXPECT_EQ(defaults->objectForKey("key"), Value(2));
  }
}

TEST_F(LinuxUserDefaultsTest, SeeAChangeOfAFileThatWasReadFromTheCacheBefore) {
  const auto defaults = suite();
  write("<key>key</key><integer>1</integer>");
  std::this_thread::sleep_for(std::chrono::milliseconds(80));  // from now on the cache is trusted
  ASSERT_EQ(defaults->objectForKey("key"), Value(1));
  ASSERT_EQ(defaults->objectForKey("key"), Value(1));

  write("<key>key</key><integer>2</integer>");
  EXPECT_EQ(defaults->objectForKey("key"), Value(2));

  std::filesystem::remove(path());
  EXPECT_EQ(defaults->objectForKey("key"), std::nullopt);
}

TEST_F(LinuxUserDefaultsTest, LoseNoKeyOfTwoProcessesThatWriteAtTheSameTime) {
  ForkedProcess first([this] { return numberOfLostWrites("first"); });
  ForkedProcess second([this] { return numberOfLostWrites("second"); });
  const std::vector<int> lost = {first.exitStatus(), second.exitStatus()};

  EXPECT_THAT(lost, testing::ElementsAre(0, 0));
  EXPECT_EQ(stored().size(), 2U * kKeys);
  EXPECT_THAT(stored(), testing::Each(testing::Pair(testing::_, Value(false))));
}

TEST_F(LinuxUserDefaultsTest, OfASuiteWithoutANameAreStoredNowhere) {
  const StandardErrorCapture console;

  store.makeSuite("")->setBool(true, "key");

  EXPECT_FALSE(std::filesystem::exists(home / "Library/Preferences/.plist"));
}

TEST_F(LinuxUserDefaultsTest, LoseNoKeyOfThreadsThatShareOneSuite) {
  const auto defaults = suite();
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&, thread] {
        for (int number = 0; number < 25; ++number)
          defaults->setBool(true, std::to_string(thread * 100 + number));
      });
    }
  }

  EXPECT_EQ(stored().size(), 100U);
}

TEST_F(LinuxUserDefaultsTest, ReadADamagedFileAsEmpty) {
  home.write(kDefaultsFile, "<plist><dict><key>key</key><true/>");

  EXPECT_EQ(suite()->objectForKey("key"), std::nullopt);
}

TEST_F(LinuxUserDefaultsTest, ReadAListInPlaceOfADictionaryAsEmpty) {
  home.write(kDefaultsFile, "<?xml version=\"1.0\"?><plist version=\"1.0\"><array><true/></array></plist>");

  EXPECT_EQ(suite()->objectForKey("key"), std::nullopt);
}

TEST_F(LinuxUserDefaultsTest, SetADamagedFileAsideBeforeWriting) {
  home.write(kDefaultsFile, "damaged");
  const StandardErrorCapture console;

  suite()->setBool(true, "key");

  EXPECT_EQ(stored(), (Value::Dictionary{{"key", true}}));
  EXPECT_EQ(test::contentOf(path() + ".damaged-1"), "damaged");
  EXPECT_EQ(console.text(), "UserDefaults: " + path() + " is damaged; kept as " + path() + ".damaged-1\n");
}

TEST_F(LinuxUserDefaultsTest, KeepEveryDamagedFile) {
  const StandardErrorCapture console;
  home.write(kDefaultsFile, "first");
  suite()->setBool(true, "key");
  home.write(kDefaultsFile, "second");
  suite()->setBool(true, "key");

  EXPECT_EQ(test::contentOf(path() + ".damaged-1"), "first");
  EXPECT_EQ(test::contentOf(path() + ".damaged-2"), "second");
}

TEST_F(LinuxUserDefaultsTest, ReportAFullDiskAndKeepTheOldValues) {
  write("<key>kept</key><true/>");
  const StandardErrorCapture console;

  // No file of this process may grow, which is how a full disk looks to a writer.
  ForkedProcess process([this] {
    const rlimit none = {.rlim_cur = 0, .rlim_max = 0};
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &none);
    return suite()->setBool(true, "key"), 0;
  });

  EXPECT_EQ(process.exitStatus(), 0);
  EXPECT_EQ(stored(), (Value::Dictionary{{"kept", true}}));
}

TEST_F(LinuxUserDefaultsTest, ReportAHomeFolderThatTakesNothing) {
  home.write("Library", "a file where a folder should be");
  const StandardErrorCapture console;

  suite()->setBool(true, "key");

  EXPECT_EQ(console.text(), "UserDefaults: failed to store key in " + path() +
                                ". Reason: " + Error::posix(ENOTDIR).localizedDescription() + "\n");
  EXPECT_FALSE(suite()->boolForKey("key"));
}

TEST_F(LinuxUserDefaultsTest, ReadBackInThisProcessWhatCouldNotBeStored) {
  home.write("Library", "a file where a folder should be");
  const StandardErrorCapture console;
  const auto defaults = suite();

  defaults->setBool(true, "key");

  EXPECT_TRUE(defaults->boolForKey("key"));
}

TEST_F(LinuxUserDefaultsTest, StoreWhatCouldNotBeStoredWithTheNextValue) {
  const std::string obstacle = home.write("Library", "a file where a folder should be");
  const StandardErrorCapture console;
  const auto defaults = suite();
  defaults->setBool(true, "early");
  std::filesystem::remove(obstacle);

  defaults->setBool(true, "late");

  EXPECT_EQ(stored(), (Value::Dictionary{{"early", true}, {"late", true}}));
}

TEST_F(LinuxUserDefaultsTest, ReadWithoutBeingAllowedToWrite) {
  const ScopedEnvironment elsewhere("HOME", "/proc/self");
  const StandardErrorCapture console;

  EXPECT_FALSE(store.makeSuite(kSuite)->boolForKey("key"));
  store.makeSuite(kSuite)->setBool(true, "key");

  EXPECT_THAT(console.text(),
              testing::StartsWith("UserDefaults: failed to store key in /proc/self/Library/"));
}

TEST_F(LinuxUserDefaultsTest, StoreNothingOutsideThePreferencesFolder) {
  const StandardErrorCapture console;

  store.makeSuite("../escaped")->setBool(true, "key");
  store.makeSuite("")->setBool(true, "key");

  EXPECT_FALSE(std::filesystem::exists(home / "Library/escaped.plist"));
  EXPECT_FALSE(store.makeSuite("../escaped")->boolForKey("key"));
}

TEST_F(LinuxUserDefaultsTest, NameTheStandardDefaultsAfterAProgramThatIsInNoBundle) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").filename();

  store.standardUserDefaults().setBool(true, "key");

  EXPECT_TRUE(std::filesystem::exists(home / ("Library/Preferences/" + program + ".plist")));
  EXPECT_EQ(&store.standardUserDefaults(), &store.standardUserDefaults());
}

TEST_F(LinuxUserDefaultsTest, HaveEverythingOnDiskAfterSynchronize) {
  const auto defaults = suite();

  defaults->setBool(true, "key");
  defaults->synchronize();

  EXPECT_EQ(stored(), (Value::Dictionary{{"key", true}}));
}

}  // namespace
}  // namespace karno::platform
