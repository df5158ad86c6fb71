#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "places.h"
#include "subprocess.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKills = 220;
constexpr std::size_t kPrivilegedKills = 40;
constexpr int kFolders = 5;
constexpr int kFilesInFolder = 4;
constexpr unsigned kDefaultSeed = 20240305;

std::string contentsOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

unsigned seed() {
  const char* const given = ::getenv("KARNO_TEST_SEED");
  return given == nullptr ? kDefaultSeed : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
}

// Every path of a folder with what lies there.
std::map<std::string, std::string> everythingIn(const fs::path& folder) {
  std::map<std::string, std::string> found;
  std::error_code ignored;
  for (const auto& entry : fs::recursive_directory_iterator(folder, ignored)) {
    const std::string path = entry.path().lexically_relative(folder).string();
    if (entry.is_symlink()) {
      found[path] = "-> " + fs::read_symlink(entry.path()).string();
    } else {
      found[path] = entry.is_directory() ? "folder" : contentsOf(entry.path());
    }
  }
  return found;
}

enum class OldCopy { None, Trashed, TrashedOnAnotherDisk };
constexpr std::array kOldCopies = {OldCopy::None, OldCopy::Trashed, OldCopy::TrashedOnAnotherDisk};

// What two hundred killed moves came to.
struct Tally {
  int killed = 0;
  int sourceStillWhole = 0;
  int copyAlreadyWhole = 0;
  std::string lost;     // at which changes of the disk neither was whole
  std::string half;     // at which a part of a bundle had the name of a whole one
  std::string oldLost;  // at which the old copy was neither in its place nor in the Trash
};

// A folder like a Mac's disk with a bundle in Downloads that a process moves, and may be killed while it
// does.
class InterruptedMove : public ::testing::Test {
 protected:
  InterruptedMove() {
    std::string pattern = (fs::temp_directory_path() / "karno-test-XXXXXX").string();
    root_ = fs::canonical(::mkdtemp(pattern.data()));
    fs::create_directories(root_ / "System/Library/CoreServices");
    std::ofstream(root_ / "System/Library/CoreServices/SystemVersion.plist")
        << "<plist version=\"1.0\"><dict><key>ProductVersion</key><string>14.5</string></dict></plist>\n";
  }
  ~InterruptedMove() override {
    fs::remove_all(root_);
    fs::remove_all(otherDisk());
  }

  void layOut(OldCopy oldCopy) {
    for (const char* folder : {"Applications", "Users"}) fs::remove_all(root_ / folder);
    fs::remove_all(otherDisk());
    fs::create_directories(installed().parent_path());
    writeBundle(source(), "new");
    if (oldCopy != OldCopy::None) writeBundle(installed(), "old");
    if (oldCopy == OldCopy::TrashedOnAnotherDisk) {
      fs::create_directory(otherDisk());
      fs::create_directory_symlink(otherDisk(), trashed().parent_path());
    }
    whole_ = everythingIn(source());
    old_ = everythingIn(installed());
  }

  // Moves the bundle; at that change of the disk the process is killed. 0 kills it never.
  CommandResult move(long killAt) {
    return runCommand({"env", "LD_PRELOAD=" + faultyDisk().string(), "HOME=" + home().string(),
                       "KARNO_MACHINE_ROOT=" + root_.string(), "KARNO_TEST_KILL_AT=" + std::to_string(killAt),
                       "KARNO_TEST_COUNT_FILE=" + countFile().string(), moveOnce(), source()},
                      std::chrono::seconds(20));
  }

  long changesOfAWholeMove(OldCopy oldCopy) {
    layOut(oldCopy);
    const CommandResult moved = move(0);
    EXPECT_EQ(moved.status, 0) << moved.output;
    return std::strtol(contentsOf(countFile()).c_str(), nullptr, 10);
  }

  Tally killAnywhere() {
    std::map<OldCopy, long> changes;
    for (const OldCopy oldCopy : kOldCopies) changes[oldCopy] = changesOfAWholeMove(oldCopy);
    std::mt19937 random(seed());
    Tally tally;
    for (std::size_t run = 0; run < kKills; ++run) {
      const OldCopy oldCopy = kOldCopies[run % kOldCopies.size()];
      layOut(oldCopy);
      const long killAt = std::uniform_int_distribution<long>(1, changes[oldCopy])(random);
      tally.killed += move(killAt).status == 128 + SIGKILL;
      const bool isSourceWhole = isWhole(source());
      const bool isCopyWhole = isWhole(installed());
      tally.sourceStillWhole += isSourceWhole;
      tally.copyAlreadyWhole += isCopyWhole;
      const std::string at = " " + std::to_string(killAt);
      if (!isSourceWhole && !isCopyWhole) tally.lost += at;
      const auto there = everythingIn(installed());
      if (!there.empty() && !isCopyWhole && there != old_) tally.half += at;
      if (!old_.empty() && there != old_ && everythingIn(trashed()) != old_) tally.oldLost += at;
    }
    return tally;
  }

  // Nobody may write to Applications but an administrator, who always says yes.
  void shutApplications() {
    const fs::path pkexec = root_ / "usr/bin/pkexec";
    fs::create_directories(pkexec.parent_path());
    std::ofstream(pkexec) << "#!/bin/sh\nchmod u+w '" << installed().parent_path().string()
                          << "'\nexec \"$@\"\n";
    fs::permissions(pkexec, fs::perms(0755));
    fs::permissions(installed().parent_path(), fs::perms(0555));
  }

  bool isWhole(const fs::path& bundle) const { return everythingIn(bundle) == whole_; }

  fs::path home() const { return root_ / "Users/user"; }
  fs::path source() const { return home() / "Downloads/Karno.app"; }
  fs::path trashed() const { return home() / ".Trash/Karno.app"; }
  fs::path installed() const { return root_ / "Applications/Karno.app"; }

 private:
  fs::path otherDisk() const { return fs::path("/dev/shm") / root_.filename(); }
  fs::path countFile() const { return root_ / "changes"; }

  static void writeBundle(const fs::path& bundle, const std::string& content) {
    for (int folder = 0; folder < kFolders; ++folder) {
      const fs::path place = bundle / "Contents" / std::to_string(folder);
      fs::create_directories(place);
      for (int file = 0; file < kFilesInFolder; ++file) {
        std::ofstream(place / std::to_string(file)) << content << std::string(1'000, 'x');
      }
      fs::create_symlink("0", place / "link");
    }
  }

  fs::path root_;
  std::map<std::string, std::string> whole_;
  std::map<std::string, std::string> old_;  // empty without one
};

TEST_F(InterruptedMove, LeavesOneWholeBundleWhereverItIsKilled) {
  ASSERT_GE(changesOfAWholeMove(OldCopy::Trashed), 80);

  const Tally tally = killAnywhere();

  EXPECT_EQ(tally.lost, "") << "with the seed " << seed();
  EXPECT_EQ(tally.half, "") << "with the seed " << seed();
  EXPECT_EQ(tally.oldLost, "") << "with the seed " << seed();
  EXPECT_GE(tally.killed, 200);
  EXPECT_GT(tally.sourceStillWhole, 0);
  EXPECT_GT(tally.copyAlreadyWhole, 0);
}

// The launcher, rm or cp: whoever comes to that change is killed.
TEST_F(InterruptedMove, WithAPasswordKeepsTheBundleUntilItsCopyIsWhole) {
  std::mt19937 random(seed());
  int sourcesStillWhole = 0;
  int copiesAlreadyWhole = 0;
  std::string lost;

  for (std::size_t run = 0; run < kPrivilegedKills; ++run) {
    layOut(run % 2 == 0 ? OldCopy::None : OldCopy::Trashed);
    shutApplications();
    const long killAt = std::uniform_int_distribution<long>(1, 80)(random);
    move(killAt);
    fs::permissions(installed().parent_path(), fs::perms(0755));
    sourcesStillWhole += isWhole(source());
    copiesAlreadyWhole += isWhole(installed());
    if (!isWhole(source()) && !isWhole(installed())) lost += " " + std::to_string(killAt);
  }

  EXPECT_EQ(lost, "") << "with the seed " << seed();
  EXPECT_GT(sourcesStillWhole, 0);
  EXPECT_GT(copiesAlreadyWhole, 0);
}

TEST_F(InterruptedMove, LeavesNothingBehindOnceItHasBeenMadeAgain) {
  const long changes = changesOfAWholeMove(OldCopy::None);
  layOut(OldCopy::None);
  ASSERT_EQ(move(changes / 3).status, 128 + SIGKILL);
  ASSERT_TRUE(fs::exists(installed().parent_path() / ".Karno.app.copying"));

  EXPECT_EQ(move(0).status, 0);

  EXPECT_TRUE(isWhole(installed()));
  EXPECT_EQ(std::distance(fs::directory_iterator(installed().parent_path()), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace karno::test
