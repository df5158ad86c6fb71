#include <gtest/gtest.h>

#include <filesystem>

#include "installer/install.h"
#include "support/install_place.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;
using installer::InstallEnd;
using installer::installUpdate;
using platform::exchangeInOneStep;

std::string said(const InstallEnd& end) {
  return (end.isInstalled ? "installed" : "not") + (": " + end.complaint);
}

TEST(Installing, RefusesABundleThatIsNoUpdate) {
  const InstallPlace place(".karno-update-1", {.version = "1"});

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(said(end), "not: The update has version 1, which is not newer than 1.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(Installing, DoesNotTouchThePlaceForABundleThatIsNoUpdate) {
  const InstallPlace place(".karno-update-1", {.version = "1"});
  int exchanges = 0;

  installUpdate(place.request(), [&](const std::string& one, const std::string& other) {
    ++exchanges;
    return exchangeInOneStep(one, other);
  });

  EXPECT_EQ(exchanges, 0);
}

TEST(Installing, SaysWhatIsWrongWithThePresentBundle) {
  const InstallPlace place;
  fs::remove(place.bundle() + "/Contents/Info.plist");

  EXPECT_EQ(said(installUpdate(place.request())),
            "not: Of the present bundle: The bundle's Info.plist cannot be read.");
}

TEST(Installing, RefusesABundleOfAnotherIdentifier) {
  const InstallPlace place(".karno-update-1", {.identifier = "it.vantul.Other"});

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(said(end), "not: The update is of \"it.vantul.Other\", not of \"it.vantul.KarnoWrapper\".");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(Installing, TouchesNothingWithoutOneOfTheBundles) {
  const InstallPlace place;
  const std::string before = place.tree();
  auto request = place.request();

  request.newBundle += "x";
  EXPECT_EQ(said(installUpdate(request)), "not: There is no new bundle.");
  request = place.request();
  request.bundle += "x";
  EXPECT_EQ(said(installUpdate(request)), "not: There is no bundle to be replaced.");
  request.bundle = place.bundle() + "/Contents/Info.plist";
  EXPECT_EQ(said(installUpdate(request)), "not: There is no bundle to be replaced.");
  EXPECT_EQ(place.tree(), before);
}

TEST(Installing, TouchesNothingWhenOneBundleIsInTheOther) {
  const InstallPlace place;
  const std::string before = place.tree();
  constexpr const char* kEntangled =
      "not: One of the bundles lies in the other or beside it in the staging folder.";
  auto request = place.request();

  request.newBundle = place.bundle();
  EXPECT_EQ(said(installUpdate(request)), kEntangled);
  request.newBundle = place.bundle() + "/Contents";
  EXPECT_EQ(said(installUpdate(request)), kEntangled);
  request = place.request();
  request.bundle = place.newBundle() + "/Contents";
  EXPECT_EQ(said(installUpdate(request)), kEntangled);
  EXPECT_EQ(place.tree(), before);
}

TEST(Installing, TouchesNothingWhenTheOldBundleIsInANewOneOutsideOfAStagingFolder) {
  const InstallPlace place("elsewhere");
  const std::string before = place.tree();
  auto request = place.request();
  request.bundle = place.newBundle() + "/Contents";

  const InstallEnd end = installUpdate(request);

  EXPECT_EQ(said(end), "not: One of the bundles lies in the other or beside it in the staging folder.");
  EXPECT_EQ(place.tree(), before);
}

TEST(Installing, TakesANewBundleFromAFolderWhoseNameOnlyBeginsAsTheOldOnes) {
  const InstallPlace place("Karno.app-new");

  const InstallEnd end = installUpdate(place.request());

  EXPECT_EQ(said(end), "installed: ");
  EXPECT_EQ(treeText(place.bundle()), treeText(InstallPlace().newBundle()));
}

TEST(Installing, TouchesNothingWhenTheOldBundleIsInTheStagingFolder) {
  const InstallPlace place;
  writeItems(place.folder() / ".karno-update-1/inner", bundleItems({.version = "1"}));
  const std::string before = place.tree();
  auto request = place.request();
  request.bundle = place.folder() / ".karno-update-1/inner/Karno.app";

  const InstallEnd end = installUpdate(request);

  EXPECT_EQ(said(end), "not: One of the bundles lies in the other or beside it in the staging folder.");
  EXPECT_EQ(place.tree(), before);
}

TEST(Installing, TouchesNothingAcrossVolumes) {
  const InstallPlace place;
  const std::string before = place.tree();
  auto request = place.request();
  request.newBundle = "/proc/self/task";

  EXPECT_EQ(said(installUpdate(request)), "not: The bundles are on different volumes.");
  EXPECT_EQ(place.tree(), before);
}

}  // namespace
}  // namespace karno::test
