#pragma once
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "fake_update_services.h"
#include "platform/linux/updater/linux_updater.h"

namespace karno::platform::updates {

using test::FakePlatform;

inline constexpr const char* kFeed = "https://updates.example.org/appcast.xml";
inline constexpr const char* kKey = "hPsf8t1ewC+uyWVduIlnvE1phVi04JyHv3xRg7kyhpU=";
inline constexpr double kDay = 86400;

inline std::string feedOf(const std::string& items) {
  return "<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" + items +
         "</channel></rss>";
}

inline std::string item(const std::string& version, const std::string& more = "") {
  return fmt::format(
      "<item><title>Karno "
      "{0}</title><sparkle:version>{0}</sparkle:version>{1}<description>Better.</description>"
      "<enclosure url=\"https://files.example.org/Karno-{0}.zip\" length=\"7\" "
      "sparkle:edSignature=\"sig\"/></item>",
      version, more);
}

// Writes down what it is told; each call must come on the main thread.
class Recorder final : public UpdaterDelegate {
 public:
  explicit Recorder(FakePlatform& machine) : machine_(machine) {}

  std::string feedURLStringForUpdater(Updater&) override { return feed; }
  void didFinishLoadingAppcast(Updater&) override { note("loaded"); }
  void didFindValidUpdate(Updater&, const AppcastItem& found) override {
    note("found " + found.title.value_or("(null)") + " " + found.displayVersionString);
  }
  void updaterDidNotFindUpdate(Updater&, const Error& error) override {
    note(fmt::format("nothing {} {}", error.code(), error.localizedDescription()));
  }
  void userDidMakeChoice(Updater&, long choice, const AppcastItem&) override {
    note(fmt::format("choice {}", choice));
  }
  void willDownloadUpdate(Updater&, const AppcastItem&, const std::string& url) override {
    note("will download " + url);
  }
  void didDownloadUpdate(Updater&, const AppcastItem&) override { note("downloaded"); }
  void failedToDownloadUpdate(Updater&, const AppcastItem&, const Error& error) override {
    note(fmt::format("download failed {}", error.code()));
  }
  void userDidCancelDownload(Updater&) override { note("download cancelled"); }
  void willExtractUpdate(Updater&, const AppcastItem&) override { note("will extract"); }
  void didExtractUpdate(Updater&, const AppcastItem&) override { note("extracted"); }
  void willInstallUpdate(Updater&, const AppcastItem&) override { note("will install"); }
  bool updaterShouldRelaunchApplication(Updater&) override {
    note("relaunch?");
    return relaunches;
  }
  std::string updatedTouchfile() override { return touchfile; }
  void didAbortWithError(Updater&, const Error& error) override {
    note(fmt::format("aborted {}", error.code()));
  }

  std::vector<std::string> calls;
  std::string feed = kFeed;
  std::string touchfile;
  bool relaunches = false;

 private:
  void note(const std::string& call) {
    machine_.scheduler.requireMainThread(call);
    calls.push_back(call);
  }

  FakePlatform& machine_;
};

struct LinuxUpdaterTest : ::testing::Test {
  LinuxUpdaterTest() {
    machine.bundles.main().info = {{"CFBundleIdentifier", "it.vantul.KarnoWrapper"},
                                   {"CFBundleName", "Karno"},
                                   {"CFBundleVersion", "1.0"},
                                   {"CFBundleShortVersionString", "1.0"},
                                   {"SUEnableAutomaticChecks", false},
                                   {"SUPublicEDKey", kKey}};
    machine.network.bodies[kFeed] = feedOf(item("1.1"));
  }

  void check() {
    updater.checkForUpdates();
    machine.runFor(1);
  }
  void answer(long choice, double seconds = 30) {
    offers.answer(choice);
    machine.runFor(seconds);
  }
  Value standard(const std::string& key) { return machine.userDefaults.standard().values.at(key); }
  bool hasStandard(const std::string& key) { return machine.userDefaults.standard().values.contains(key); }

  Result<std::string> fetchFeed(const std::string& url, const std::function<bool()>& isWanted) {
    for (double slept = 0; slept < secondsOfFetching; ++slept) {
      machine.dispatch.sleep(1);
      if (isWanted()) continue;
      ++fetchesGivenUp;
      return Error::posix(ECANCELED);
    }
    return machine.network.contentsOfURL(url);
  }
  Result<std::vector<FeedItem>> readFeed(std::string_view bytes) {
    readers.push_back(machine.scheduler.currentThreadName());
    machine.dispatch.sleep(secondsOfReading);
    return parseAppcast(bytes);
  }

  FakePlatform machine;
  Recorder delegate{machine};
  test::FakeDownloads downloads{machine};
  test::FakeInstaller installer{machine};
  test::FakeUpdateFolders folders{machine};
  test::FakeUpdateSettings settings{machine};
  test::FakeOfferWindows offers{machine};
  double secondsOfFetching = 0;
  int fetchesGivenUp = 0;
  std::vector<std::string> readers;  // the threads that read a feed
  double secondsOfReading = 0;
  std::vector<std::string> languages;  // the user's
  LinuxUpdater updater{
      delegate,
      {.downloads = downloads,
       .installer = installer,
       .folders = folders,
       .settings = settings,
       .offerWindows = offers,
       .fetchFeed = [this](const auto& url, const auto& wanted) { return fetchFeed(url, wanted); },
       .readFeed = [this](std::string_view bytes) { return readFeed(bytes); },
       .languages = [this] { return languages; }}};
};

}  // namespace karno::platform::updates
