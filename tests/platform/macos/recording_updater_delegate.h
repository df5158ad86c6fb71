#pragma once
#include <fmt/format.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace karno::platform::trial {

// Writes down what an updater asks and tells, as lines.
class RecordingUpdaterDelegate final : public UpdaterDelegate {
 public:
  std::vector<std::string> told;
  int toldOnOtherThreads = 0;
  std::string feed = "https://localhost/feed.xml";
  bool relaunch = true;
  std::function<void()> onEveryCall = [] {};

  std::string feedURLStringForUpdater(Updater&) override {
    write("feed?");
    return feed;
  }
  void didFinishLoadingAppcast(Updater&) override { write("loaded"); }
  void didFindValidUpdate(Updater&, const AppcastItem& item) override { write("found " + shown(item)); }
  void updaterDidNotFindUpdate(Updater&, const Error& error) override { write("none " + shown(error)); }
  void userDidMakeChoice(Updater&, long choice, const AppcastItem& item) override {
    write(fmt::format("choice {} {}", choice, shown(item)));
  }
  void willDownloadUpdate(Updater&, const AppcastItem& item, const std::string& url) override {
    write("downloading " + shown(item) + " from " + url);
  }
  void didDownloadUpdate(Updater&, const AppcastItem& item) override { write("downloaded " + shown(item)); }
  void failedToDownloadUpdate(Updater&, const AppcastItem& item, const Error& error) override {
    write("no download " + shown(item) + " " + shown(error));
  }
  void userDidCancelDownload(Updater&) override { write("cancelled"); }
  void willExtractUpdate(Updater&, const AppcastItem& item) override { write("extracting " + shown(item)); }
  void didExtractUpdate(Updater&, const AppcastItem& item) override { write("extracted " + shown(item)); }
  void willInstallUpdate(Updater&, const AppcastItem& item) override { write("installing " + shown(item)); }
  bool updaterShouldRelaunchApplication(Updater&) override {
    write("relaunch?");
    return relaunch;
  }
  void didAbortWithError(Updater&, const Error& error) override { write("aborted " + shown(error)); }

 private:
  static std::string shown(const AppcastItem& item) {
    return item.title.value_or("(no title)") + " (" + item.displayVersionString + ")";
  }
  static std::string shown(const Error& error) {
    return fmt::format("{} {}: {}", error.domain(), error.code(), error.localizedDescription());
  }
  void write(std::string line) {
    if (!host().dispatch.isMainThread()) ++toldOnOtherThreads;
    told.push_back(std::move(line));
    onEveryCall();
  }
};

}  // namespace karno::platform::trial
