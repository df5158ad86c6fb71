#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "platform/linux/files/install_verdict.h"
#include "support/install_place.h"
#include "support/installer_program.h"
#include "support/update_place.h"

namespace karno::test {
namespace {

// More of them by hand: KARNO_TEST_KILLS=500.
int kills() {
  const char* const wanted = std::getenv("KARNO_TEST_KILLS");
  return wanted != nullptr ? std::atoi(wanted) : 50;
}

// Random moments of a program's run, the last of them a little after its end.
class Moments {
 public:
  explicit Moments(std::chrono::microseconds duration) : upTo_(0, duration.count() * 5 / 4) {}
  std::chrono::microseconds next() { return std::chrono::microseconds(upTo_(random_)); }

  static constexpr unsigned kSeed = 20240915;

 private:
  std::mt19937 random_{kSeed};
  std::uniform_int_distribution<std::chrono::microseconds::rep> upTo_;
};

TEST(KilledUnpackProgram, LeavesThePresentBundleAlone) {
  UpdatePlace place;
  place.makeArchive(bundleItems());
  const std::string before = treeText(place.bundle());
  Moments moments(durationOf(place.command()));
  for (int turn = 0; turn < kills(); ++turn) {
    std::filesystem::remove_all(place.into() + "/Karno.app");
    const auto moment = moments.next();

    killDuring(place.command(), moment);

    EXPECT_EQ(treeText(place.bundle()), before) << moment.count() << " us, seed " << Moments::kSeed;
  }
}

TEST(KilledInstallProgram, LeavesTheOldOrTheNewBundleWhole) {
  const std::string oldTree = treeText(InstallPlace().bundle());
  const std::string newTree = treeText(InstallPlace().newBundle());
  Moments moments(durationOf(InstallPlace().command()));
  for (int turn = 0; turn < kills(); ++turn) {
    const InstallPlace place;
    const auto moment = moments.next();

    killDuring(place.command(), moment);

    const std::string tree = treeText(place.bundle());
    EXPECT_TRUE(tree == oldTree || tree == newTree)
        << moment.count() << " us, seed " << Moments::kSeed << "\n"
        << tree;
  }
}

// The next update finds nothing in its way after one that was killed.
TEST(KilledInstallProgram, CanBeFollowedByAnother) {
  const std::string thirdTree = treeText(InstallPlace(".karno-update-1", {.version = "3"}).newBundle());
  Moments moments(durationOf(InstallPlace().command()));
  for (int turn = 0; turn < kills() / 2; ++turn) {
    const InstallPlace place;
    killDuring(place.command(), moments.next());
    writeItems(place.folder() / ".karno-update-2", bundleItems({.version = "3"}));
    auto request = place.request();
    request.newBundle = place.folder() / ".karno-update-2/Karno.app";

    const auto end = installUpdate(request);

    EXPECT_TRUE(end.isInstalled) << end.complaint << ", seed " << Moments::kSeed;
    EXPECT_EQ(treeText(place.bundle()), thirdTree);
  }
}

// Both programs one after the other, either of them killed.
class KilledUpdate {
 public:
  KilledUpdate() { place_.makeArchive(bundleItems()); }

  std::string bundle() const { return place_.bundle(); }
  std::vector<std::string> unpackCommand() const { return place_.command(); }
  std::vector<std::string> installCommand() const {
    return {KARNO_INSTALLER, "install", "--new",   place_.into() + "/Karno.app",
            "--bundle",      bundle(),  "--after", std::to_string(endedProcess())};
  }

  // What the bundle says when it is started, which takes the verdict as the launcher does.
  std::string saidAtStart() const {
    platform::takeInstallVerdict(bundle());
    const ProgramEnd end = runProgram({bundle() + "/Contents/MacOS/Karno"});
    return end.status == 0 ? end.output : "does not start: " + end.errors;
  }

 private:
  UpdatePlace place_;
};

TEST(KilledUpdate, LeavesABundleThatStartsWhicheverStageWasKilled) {
  KilledUpdate whole;
  Moments unpackMoments(durationOf(whole.unpackCommand()));
  Moments installMoments(durationOf(whole.installCommand()));
  int updated = 0;
  for (int turn = 0; turn < kills(); ++turn) {
    const KilledUpdate update;
    const bool isUnpackKilled = turn % 2 == 0;
    const auto moment = (isUnpackKilled ? unpackMoments : installMoments).next();

    if (isUnpackKilled) {
      killDuring(update.unpackCommand(), moment);
    } else {
      runProgram(update.unpackCommand());
      killDuring(update.installCommand(), moment);
    }

    const std::string said = update.saidAtStart();
    EXPECT_TRUE(said == "version 1\n" || (said == "version 2\n" && !isUnpackKilled))
        << said << moment.count() << " us, " << (isUnpackKilled ? "unpack" : "install") << ", seed "
        << Moments::kSeed;
    EXPECT_FALSE(platform::takeInstallVerdict(update.bundle()));
    if (said == "version 2\n") ++updated;
  }
  RecordProperty("updated", updated);
}

}  // namespace
}  // namespace karno::test
