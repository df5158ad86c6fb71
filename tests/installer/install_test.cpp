#include "installer/install.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "installer/tree_removal.h"
#include "support/install_place.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;
using installer::InstallEnd;
using installer::installUpdate;
using platform::exchangeInOneStep;

std::string saidByTheInstaller(const InstallEnd& end) {
  return (end.isInstalled ? "installed" : "not") + (": " + end.complaint);
}

TEST(Installing, PutsTheNewBundleInThePlaceAndRemovesTheOld) {
  const InstallPlace place;

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree());
}

TEST(Installing, RemovesNoOtherFolderThanAStagingFolder) {
  const InstallPlace place("elsewhere");

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree() + "755 elsewhere/\n");
}

class UnknownExchange : public testing::TestWithParam<int> {};

TEST_P(UnknownExchange, IsMadeByMovingTheOldBundleAsideFirst) {
  const InstallPlace place;

  const InstallEnd end = installUpdate(place.request(), [](auto&, auto&) { return GetParam(); });

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree());
}

INSTANTIATE_TEST_SUITE_P(Installing, UnknownExchange, testing::Values(EINVAL, ENOSYS, EOPNOTSUPP, EXDEV));

TEST(Installing, WithoutAnExchangeLeavesNothingBehindWhenTheOldBundleCannotMove) {
  const InstallPlace place;
  // It vanishes between the two looks, so that already the first move fails.
  const auto vanish = [](const std::string&, const std::string& other) {
    fs::remove_all(other);
    return ENOSYS;
  };

  const InstallEnd end = installUpdate(place.request(), vanish);

  EXPECT_EQ(saidByTheInstaller(end), "not: The bundle could not be replaced: No such file or directory.");
  EXPECT_EQ(place.tree(), "");
}

TEST(Installing, WithoutAnExchangePutsTheOldBundleBackWhenTheNewOneCannotMove) {
  const InstallPlace place;
  // It vanishes between the two looks, so that only the second move fails.
  const auto vanish = [&](const std::string& one, const std::string&) {
    fs::remove_all(one);
    return EINVAL;
  };

  const InstallEnd end = installUpdate(place.request(), vanish);

  EXPECT_EQ(saidByTheInstaller(end), "not: The bundle could not be replaced: No such file or directory.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(Installing, LeavesTheOldBundleWhenTheExchangeFails) {
  const InstallPlace place;

  const InstallEnd end = installUpdate(place.request(), [](auto&, auto&) { return EIO; });

  EXPECT_EQ(saidByTheInstaller(end), "not: The bundle could not be replaced: Input/output error.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(Installing, PutsTheOldBundleBackWhenTheNewOneIsDamagedInThePlace) {
  const InstallPlace place;
  const auto damage = [&](const std::string& one, const std::string& other) {
    const int error = exchangeInOneStep(one, other);
    fs::remove(fs::path(other) / "Contents/Info.plist");
    return error;
  };

  const InstallEnd end = installUpdate(place.request(), damage);

  EXPECT_EQ(saidByTheInstaller(end), "not: The bundle's Info.plist cannot be read.");
  EXPECT_EQ(treeText(place.bundle() + "/Contents/MacOS"), "755 Karno: #!/bin/sh\necho version 1\n\n");
}

TEST(Installing, PutsTheOldBundleBackFromAside) {
  const InstallPlace place;
  const auto damage = [&](const std::string& one, const std::string&) {
    fs::remove(fs::path(one) / "Contents/MacOS/Karno");
    return ENOSYS;
  };

  const InstallEnd end = installUpdate(place.request(), damage);

  EXPECT_EQ(saidByTheInstaller(end), "not: The bundle's executable is missing or cannot be executed.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(Installing, KeepsTheStagingFolderWhileItHoldsTheOnlyWholeBundle) {
  const InstallPlace place;
  int calls = 0;
  const auto failTheWayBack = [&](const std::string& one, const std::string& other) {
    if (++calls > 1) return EIO;
    const int error = exchangeInOneStep(one, other);
    fs::remove(fs::path(other) / "Contents/Info.plist");
    return error;
  };

  const InstallEnd end = installUpdate(place.request(), failTheWayBack);

  EXPECT_EQ(saidByTheInstaller(end),
            "not: The bundle's Info.plist cannot be read. The old bundle could not be put back: Input/output "
            "error.");
  EXPECT_EQ(treeText(place.newBundle()), treeText(InstallPlace().bundle()));
}

TEST(Installing, ReplacesTheBundleThatALinkLeadsTo) {
  const InstallPlace place;
  fs::create_symlink("Karno.app", place.folder() / "Link.app");
  auto request = place.request();
  request.bundle = place.folder() / "Link.app";

  const InstallEnd end = installUpdate(request);

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree() + "link Link.app -> Karno.app\n");
}

TEST(Installing, RemovesAnOldBundleThatIsWriteProtected) {
  const InstallPlace place;
  ::chmod((place.bundle() + "/Contents/Resources").c_str(), 0500);
  ::chmod((place.bundle() + "/Contents").c_str(), 0500);
  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree());
}

TEST(Installing, SaysWhenAStagingFolderStays) {
  const InstallPlace place;
  std::string deep = place.folder() / ".karno-update-1";
  for (int level = 0; level <= installer::kRemovedDepthMax; ++level) deep += "/d";
  fs::create_directories(deep);

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(saidByTheInstaller(end),
            "installed: The old bundle could not be removed: Too many levels of symbolic links.");
  EXPECT_EQ(treeText(place.bundle()), treeText(InstallPlace().newBundle()));
}

TEST(Installing, LeavesWhatLinksOfTheOldBundleLeadTo) {
  const InstallPlace place;
  place.folder().write("mine/file", "mine");
  fs::create_symlink(place.folder() / "mine", place.bundle() + "/Contents/link");

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(treeText(place.folder() / "mine"), "644 file: mine\n");
}

TEST(Installing, WaitsForTheProcess) {
  const InstallPlace place;
  auto request = place.request();
  const WaitingChild child;
  request.after = child.processIdentifier();
  const auto look = [&](const std::string& one, const std::string& other) {
    EXPECT_FALSE(child.isRunning());
    return exchangeInOneStep(one, other);
  };

  child.endSoon();
  const InstallEnd end = installUpdate(request, look);

  EXPECT_EQ(saidByTheInstaller(end), "installed: ");
  EXPECT_EQ(place.tree(), place.newTree());
}

// The staging folder may hold the only whole bundle by then.
TEST(Installing, TouchesNothingWhenTheBundleGoesWhileItWaits) {
  const InstallPlace place;
  auto request = place.request();
  const WaitingChild child;
  request.after = child.processIdentifier();
  std::thread somebody([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    fs::rename(place.bundle(), place.folder() / "elsewhere");
    child.endSoon();
  });

  const InstallEnd end = installUpdate(request);
  somebody.join();

  EXPECT_EQ(saidByTheInstaller(end), "not: There is no bundle to be replaced.");
  EXPECT_TRUE(fs::exists(place.newBundle()));
}

TEST(Installing, GivesUpWhenTheProcessStays) {
  const InstallPlace place;
  auto request = place.request();
  const WaitingChild child;
  request.after = child.processIdentifier();
  request.giveUpAfter = std::chrono::seconds(0);

  const InstallEnd end = installUpdate(request);

  EXPECT_EQ(saidByTheInstaller(end), "not: The process " + std::to_string(request.after) + " did not end.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

// The kill comes exactly between two steps, which a kill from outside can only hope for.
TEST(Installing, LeavesAWholeBundleWhenItIsKilledBesideTheExchange) {
  const InstallPlace before;
  endInExchange(before, [](const std::string&, const std::string&) { return ::raise(SIGKILL); });
  EXPECT_EQ(treeText(before.bundle()), treeText(InstallPlace().bundle()));

  const InstallPlace after;
  endInExchange(after, [](const std::string& one, const std::string& other) {
    exchangeInOneStep(one, other);
    return ::raise(SIGKILL);
  });
  EXPECT_EQ(treeText(after.bundle()), treeText(InstallPlace().newBundle()));
}

}  // namespace
}  // namespace karno::test
