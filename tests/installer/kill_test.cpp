#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "support/install_place.h"
#include "support/installer_program.h"
#include "support/update_place.h"

namespace karno::test {
namespace {

constexpr int kKills = 50;

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
  for (int turn = 0; turn < kKills; ++turn) {
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
  for (int turn = 0; turn < kKills; ++turn) {
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
  for (int turn = 0; turn < kKills / 2; ++turn) {
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

}  // namespace
}  // namespace karno::test
