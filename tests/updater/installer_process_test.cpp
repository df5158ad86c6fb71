#include "platform/linux/updater/installer_process.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

#include "elements_are.h"
#include "fake_bundles.h"
#include "temporary_folder.h"

namespace karno::platform::updates {
namespace {

using karno::test::ElementsAre;
using std::chrono::milliseconds;
using ::testing::Pair;

constexpr const char* kEndedEarly = "The installer ended before the update was unpacked.";

// A bundle whose installer is a script of the test's.
class StartedInstaller : public ::testing::Test {
 protected:
  StartedInstaller() { bundles_.main().setPath(folder_ / "Karno.app"); }

  void setScript(const std::string& lines) {
    const std::string path =
        folder_.write("Karno.app/Contents/Helpers/karno-installer", "#!/bin/bash\n" + lines + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }

  // The path, or the code and the text of what stood in its way.
  std::string unpack(InstallerWaits waits = {}) {
    InstallerProcess installer(bundles_, waits);
    const auto unpacked = installer.unpack(request_, [this](std::uint64_t done, std::uint64_t total) {
      amounts_.emplace_back(done, total);
      return isWanted_;
    });
    if (unpacked) return unpacked.value();
    return std::to_string(unpacked.error().code()) + " " + unpacked.error().localizedDescription();
  }

  std::string waitForFile(const std::string& path) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(path) && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(milliseconds(10));
    return test::contentOf(path);
  }

  const test::TemporaryFolder folder_;
  test::FakeBundles bundles_;
  UnpackRequest request_{.archive = "/a/archive",
                         .length = 7,
                         .signature = "c2ln",
                         .publicKey = "a2V5",
                         .bundle = "/a/Karno.app",
                         .folder = "/a/new"};
  bool isWanted_ = true;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> amounts_;
};

TEST_F(StartedInstaller, IsToldAllThatItNeedsToUnpack) {
  setScript("echo \"ready /$*\"");

  EXPECT_EQ(unpack(),
            "/unpack --archive /a/archive --signature c2ln --public-key a2V5 --bundle /a/Karno.app "
            "--into /a/new --length 7");
}

TEST_F(StartedInstaller, TellsHowFarItIs) {
  setScript("echo 'progress 1 2'; echo 'progress 2 2'; echo 'ready /a/new/Karno.app'");

  EXPECT_EQ(unpack({.look = std::chrono::hours(1)}), "/a/new/Karno.app");

  EXPECT_EQ(amounts_.back(), std::pair(std::uint64_t{2}, std::uint64_t{2}));
}

TEST_F(StartedInstaller, TellsWhyItFailed) {
  setScript("echo 'failed 3001 Not signed.'; exit 1");

  EXPECT_EQ(unpack(), "3001 Not signed.");
}

TEST_F(StartedInstaller, ThatDiesIsAFailure) {
  setScript("echo 'progress 1 2'; kill -SEGV $$");

  EXPECT_EQ(unpack(), std::string("3000 ") + kEndedEarly);
}

TEST_F(StartedInstaller, ThatIsNotThereIsAFailure) { EXPECT_EQ(unpack().substr(0, 2), "2 "); }

TEST_F(StartedInstaller, IsEndedWhenNobodyWantsItThoughItSaysNothing) {
  setScript("exec sleep 60");
  isWanted_ = false;

  EXPECT_EQ(unpack({.look = milliseconds(10), .ending = std::chrono::hours(1)}),
            std::string("3000 ") + kEndedEarly);

  EXPECT_THAT(amounts_, ElementsAre(Pair(0, 0)));
}

TEST_F(StartedInstaller, IsKilledWhenItDoesNotEndByItself) {
  setScript("trap '' TERM; while true; do read -t 0.1 <> <(:); done");
  isWanted_ = false;

  EXPECT_EQ(unpack({.look = milliseconds(10), .ending = milliseconds(300)}),
            std::string("3000 ") + kEndedEarly);
}

TEST_F(StartedInstaller, IsEndedWhenItSaysNothingForTooLong) {
  setScript("exec sleep 60");

  EXPECT_EQ(unpack({.look = milliseconds(10), .silence = milliseconds(100)}),
            std::string("3000 ") + kEndedEarly);
}

TEST_F(StartedInstaller, IsNotWaitedForOnceItHasClosedItsOutput) {
  setScript("echo 'ready /a/new/Karno.app'; exec >&-; exec sleep 60");

  EXPECT_EQ(unpack(), "/a/new/Karno.app");
}

TEST_F(StartedInstaller, IsLeftAloneToInstall) {
  setScript("echo \"$*\" > \"$0.new\"; mv \"$0.new\" \"$0.told\"");
  InstallerProcess installer(bundles_);

  const auto error = installer.installAfterQuit({.newBundle = "/a/new/Karno.app",
                                                 .bundle = "/a/Karno.app",
                                                 .touchfile = "/a/.updated",
                                                 .relaunch = true});

  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(waitForFile(folder_ / "Karno.app/Contents/Helpers/karno-installer.told"),
            "install --new /a/new/Karno.app --bundle /a/Karno.app --after " + std::to_string(::getpid()) +
                " --touch-file /a/.updated --relaunch\n");
}

}  // namespace
}  // namespace karno::platform::updates
