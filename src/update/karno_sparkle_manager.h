#pragma once
#include <memory>
#include <mutex>
#include <string>

#include "platform/updater.h"

namespace karno {

// The one owner of the software updates of the whole bundle, the embedded applications included: it drives
// the updater, applies the administrator's policy on automatic checks and, as the updater's delegate, logs
// and acts on every stage of a session. The delegate's calls come on the main thread.
class KarnoSparkleManager : public platform::UpdaterDelegate {
 public:
  static KarnoSparkleManager& instance();

  // Starts the updater, offers a macFUSE update when the launcher itself was updated before this start, and
  // applies the administrator's policy. Waits for the main queue, so never call it on the main thread. Called
  // after each fresh launch of the embedded application.
  static void start();

  // Whether the updater is in a session or cannot check for updates at this moment. Both are asked every
  // time. Any thread.
  bool isUpdateInProgress();

  // The feed in use: the deployment's, or the one that the file "KARNOUPGRADE.debug" in the home folder
  // names. Read afresh every time; a marker that holds no URL is warned of every time.
  std::string feedURL() const;

  // A check that the user asked for. Ignored while a session is under way. Main thread only.
  void checkForUpdates();

  // Hands the choice to the updater. The getter's flag deliberately stays as it was.
  void setCheckForUpdatesAutomatically(bool automatically);
  bool checkForUpdatesAutomatically() const { return checkForUpdatesAutomatically_; }

  // Makes the updater treat the next launch as a first launch again; on disk when it returns. Any thread.
  void resetSparkle();

  // Built on first use and kept for the life of the process; building does not start it.
  platform::Updater& sparkleUpdater();

  // The file that tells the next start that an update was installed. It lies in the launcher's cache folder,
  // which the launcher never creates.
  std::string updatedTouchfile() override;

  // Creates the touch file.
  void recordKarnoHasBeenUpdated();

  // Offers a macFUSE update when the touch file is there. It goes when that offer has ended, however it
  // ended.
  void checkFuseFollowingAnUpdate();

  std::string feedURLStringForUpdater(platform::Updater& updater) override;
  void didFinishLoadingAppcast(platform::Updater& updater) override;
  void didFindValidUpdate(platform::Updater& updater, const platform::AppcastItem& item) override;
  void updaterDidNotFindUpdate(platform::Updater& updater, const platform::Error& error) override;
  void userDidMakeChoice(platform::Updater& updater, long choice, const platform::AppcastItem& item) override;
  void willDownloadUpdate(platform::Updater& updater, const platform::AppcastItem& item,
                          const std::string& url) override;
  void didDownloadUpdate(platform::Updater& updater, const platform::AppcastItem& item) override;
  void failedToDownloadUpdate(platform::Updater& updater, const platform::AppcastItem& item,
                              const platform::Error& error) override;
  void userDidCancelDownload(platform::Updater& updater) override;
  void willExtractUpdate(platform::Updater& updater, const platform::AppcastItem& item) override;
  void didExtractUpdate(platform::Updater& updater, const platform::AppcastItem& item) override;
  void willInstallUpdate(platform::Updater& updater, const platform::AppcastItem& item) override;

  // Stops the embedded application, at most ten seconds long, and begins the launcher's own end. Answers
  // false: nothing runs after an update until somebody opens the launcher.
  bool updaterShouldRelaunchApplication(platform::Updater& updater) override;

  void didAbortWithError(platform::Updater& updater, const platform::Error& error) override;

  // Whether the last check of the feed found a valid update. Main thread only.
  bool foundKarnoUpdate() const { return foundKarnoUpdate_; }
  void setFoundKarnoUpdate(bool found) { foundKarnoUpdate_ = found; }

 private:
  struct Feed {
    std::string url;
    std::string badMarker = {};  // the path of a marker that holds no URL; empty: none
  };
  Feed chooseFeed() const;

  bool checkForUpdatesAutomatically_ = false;
  bool foundKarnoUpdate_ = false;
  bool isMarkerToldOf_ = false;  // in the check that has begun; main thread only
  std::mutex buildLock_;         // guards the making of the two below
  std::unique_ptr<platform::Updater> sparkleUpdater_;
  std::string updatedTouchfile_;
};

}  // namespace karno
