#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "tar_files.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using platform::CommandEnd;
using platform::Error;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kReport = "/Users/tester/report.tar.gz";
constexpr const char* kHidden = "/Users/tester/.report.tar.gz.partial";
constexpr const char* kGzip = "/bin/sh|-c|/usr/bin/gzip '-nf' '/Users/tester/.report.tar.gz.partial' 2>&1";
constexpr const char* kCrashes = "/Users/tester/Library/Logs/DiagnosticReports/";

// A machine whose gzip only gives the file its other name, and somebody who reports.
class Reporting : public testing::Test {
 protected:
  Reporting() {
    terminal_.keepPrivateFiles(machine_.files);
    machine_.commands.whenRun = [this](const std::string& line) {
      if (line == kGzip) machine_.files.move(kHidden, kHidden + std::string(".gz"));
    };
    says("'--version'", "karnoctl 1.2.3\n");
  }

  void says(const std::string& words, const std::string& output, int status = 0) {
    machine_.commands.answers.insert_or_assign(
        "/bin/sh|-c|'/Applications/Karno.app/Contents/MacOS/karnoctl' " + words + " 2>&1",
        CommandEnd{.end = {.terminationStatus = status}, .standardOutput = output});
  }

  int report() { return terminal_.run({"report", "--output", kReport}); }

  std::map<std::string, std::string> files() const { return test::filesOfTar(machine_.files.text(kReport)); }

  std::string file(const std::string& name) const { return files().at("karno-report/" + name); }

  bool isAnythingLeft() const {
    return machine_.files.fileExists(kReport) || machine_.files.fileExists(kHidden) ||
           machine_.files.fileExists(kHidden + std::string(".gz"));
  }

  test::FakePlatform machine_;
  test::Terminal terminal_;
};

TEST_F(Reporting, TakesWhatTheVerbsSay) {
  says("'status'", "No Karno launcher runs.\n", 3);
  says("'explain' '--json'", "{}\n");
  says("'diagnose'", "The log shows nothing wrong.\n");

  EXPECT_EQ(report(), 0);

  EXPECT_EQ(file("version.txt"), "karnoctl 1.2.3\n(exit status 0)\n");
  EXPECT_EQ(file("status.txt"), "No Karno launcher runs.\n(exit status 3)\n");
  EXPECT_EQ(file("explain.json"), "{}\n");
  EXPECT_EQ(file("diagnose.txt"), "The log shows nothing wrong.\n(exit status 0)\n");
  EXPECT_TRUE(files().contains("karno-report/self-check.txt"));
}

TEST_F(Reporting, TakesBothLogs) {
  machine_.files.addFile(test::kLogFile, "new\n");
  machine_.files.addFile(test::kOldLogFile, "old\n");

  EXPECT_EQ(report(), 0);

  EXPECT_EQ(file("karno-wrapper.log"), "new\n");
  EXPECT_EQ(file("karno-wrapper.old.log"), "old\n");
}

TEST_F(Reporting, TakesTheCrashReportsOfTheLast30Days) {
  const auto daysAgo = [](int days) { return test::kStartOfTest - std::chrono::hours(24 * days); };
  machine_.files.addFile(kCrashes + std::string("Karno-new.ips"), "new", daysAgo(29));
  machine_.files.addFile(kCrashes + std::string("Karno-old.ips"), "old", daysAgo(31));
  machine_.files.addFile(kCrashes + std::string("Finder-new.ips"), "other", daysAgo(1));

  EXPECT_EQ(report(), 0);

  EXPECT_EQ(file("crashes/Karno-new.ips"), "new");
  EXPECT_THAT(machine_.files.text(kReport), Not(HasSubstr("Karno-old")));
  EXPECT_THAT(machine_.files.text(kReport), Not(HasSubstr("Finder")));
}

TEST_F(Reporting, TakesManagedValuesAndTheLaunchersSettings) {
  machine_.files.addFile("/Library/Managed Preferences/it.vantul.KarnoAdmin.plist",
                         "<plist><dict><key>USE_FILE_PROVIDER</key><string>YES</string></dict></plist>");

  EXPECT_EQ(report(), 0);

  EXPECT_THAT(file("settings/managed.txt"), HasSubstr("USE_FILE_PROVIDER"));
}

TEST_F(Reporting, DisguisesTheUserInTextsAndNames) {
  machine_.commands.answers.insert_or_assign("/bin/sh|-c|/usr/bin/id '-un' 2>&1",
                                             CommandEnd{.end = {}, .standardOutput = "jdoe\n"});
  machine_.files.addFile(test::kLogFile, "/Users/tester/x tester jdoe\n");
  machine_.files.addFile(kCrashes + std::string("Karno_1_tester-mac.ips"), "tester", test::kStartOfTest);

  EXPECT_EQ(report(), 0);

  EXPECT_EQ(file("karno-wrapper.log"), "~/x USER USER\n");
  EXPECT_THAT(machine_.files.text(kReport), Not(HasSubstr("tester-")));
}

TEST_F(Reporting, SaysWhatIsInItAndWhatIsNot) {
  machine_.files.addFile(test::kLogFile, "new\n");

  EXPECT_EQ(report(), 0);

  EXPECT_THAT(terminal_.out(), HasSubstr("In the report:\n  version.txt (31 bytes)\n"));
  EXPECT_THAT(terminal_.out(), HasSubstr("  karno-wrapper.log (4 bytes)\n"));
  EXPECT_THAT(terminal_.out(), HasSubstr("Not in it:\n  karno-wrapper.old.log: "));
  EXPECT_THAT(terminal_.out(), HasSubstr("  crashes/: none of the last 30 days\n"));
  EXPECT_THAT(terminal_.out(), HasSubstr("Nothing was sent: /Users/tester/report.tar.gz\n"));
}

TEST_F(Reporting, ReplacesAReportThatIsThere) {
  machine_.files.addFile(kReport, "an old one");

  EXPECT_EQ(report(), 0);

  EXPECT_EQ(file("version.txt"), "karnoctl 1.2.3\n(exit status 0)\n");
  EXPECT_FALSE(machine_.files.fileExists(kHidden));
}

TEST_F(Reporting, LeavesNothingOnAFullDisk) {
  terminal_.keepPrivateFiles(machine_.files, Error::posix(ENOSPC));

  EXPECT_EQ(report(), 1);

  EXPECT_EQ(terminal_.out(), "");
  EXPECT_EQ(terminal_.err(),
            "karnoctl: cannot write '/Users/tester/report.tar.gz': No space left on device\n");
  EXPECT_FALSE(isAnythingLeft());
}

TEST_F(Reporting, LeavesNothingWhereGzipFails) {
  machine_.commands.whenRun = nullptr;
  machine_.commands.answers.insert_or_assign(
      kGzip,
      CommandEnd{.end = {.terminationStatus = 1}, .standardOutput = "gzip: No space left on device\n"});

  EXPECT_EQ(report(), 1);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: cannot write '/Users/tester/report.tar.gz': gzip: No space left on device\n");
  EXPECT_FALSE(isAnythingLeft());
}

TEST_F(Reporting, LeavesNothingWhereTheArchiveCannotGetItsName) {
  machine_.files.failMove(kHidden + std::string(".gz"), EACCES);

  EXPECT_EQ(report(), 1);

  EXPECT_EQ(terminal_.err(), "karnoctl: cannot write '/Users/tester/report.tar.gz': Permission denied\n");
  EXPECT_FALSE(isAnythingLeft());
}

TEST_F(Reporting, ReplacesNoFolder) {
  machine_.files.addDirectory(kReport);

  EXPECT_EQ(report(), 1);

  EXPECT_EQ(terminal_.err(), "karnoctl: cannot write '/Users/tester/report.tar.gz': Is a directory\n");
  EXPECT_TRUE(machine_.files.isFolder(kReport));
}

TEST_F(Reporting, WantsANameForItsOutput) {
  EXPECT_EQ(terminal_.run({"report", "--output="}), 64);
  EXPECT_EQ(terminal_.run({"report", "there"}), 64);

  EXPECT_EQ(terminal_.err(),
            "karnoctl: --output needs a value\nTry \"karnoctl help report\".\n"
            "karnoctl: report takes no argument 'there'\nTry \"karnoctl help report\".\n");
}

}  // namespace
}  // namespace karno::karnoctl
