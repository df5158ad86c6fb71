#pragma once
#include <memory>
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform {

class Updater;

// An entry of the feed, as far as the launcher tells of it.
// Its texts are lines, see text/one_line.h.
struct AppcastItem {
  std::optional<std::string> title;  // absent where the feed gives none
  std::string displayVersionString;
};

// What the user answered to an offer. An updater may know more answers than these three.
inline constexpr long kUserUpdateChoiceSkip = 0;
inline constexpr long kUserUpdateChoiceInstall = 1;
inline constexpr long kUserUpdateChoiceDismiss = 2;

// Whom an updater asks and tells as a session goes on. All calls come on the main thread, in an order that
// the updater decides; any stage may be followed by the end of the session.
class UpdaterDelegate {
 public:
  virtual ~UpdaterDelegate() = default;

  // Asked before every download of the feed.
  virtual std::string feedURLStringForUpdater(Updater& updater) = 0;

  virtual void didFinishLoadingAppcast(Updater& updater) = 0;
  virtual void didFindValidUpdate(Updater& updater, const AppcastItem& item) = 0;
  virtual void updaterDidNotFindUpdate(Updater& updater, const Error& error) = 0;
  virtual void userDidMakeChoice(Updater& updater, long choice, const AppcastItem& item) = 0;
  virtual void willDownloadUpdate(Updater& updater, const AppcastItem& item, const std::string& url) = 0;
  virtual void didDownloadUpdate(Updater& updater, const AppcastItem& item) = 0;
  virtual void failedToDownloadUpdate(Updater& updater, const AppcastItem& item, const Error& error) = 0;
  virtual void userDidCancelDownload(Updater& updater) = 0;
  virtual void willExtractUpdate(Updater& updater, const AppcastItem& item) = 0;
  virtual void didExtractUpdate(Updater& updater, const AppcastItem& item) = 0;
  virtual void willInstallUpdate(Updater& updater, const AppcastItem& item) = 0;

  // Whether the application is to be opened again once the update is in its place.
  virtual bool updaterShouldRelaunchApplication(Updater& updater) = 0;

  // The file by which the application knows at its next start that it was updated. It is to go where the
  // installation fails once the application has ended. Empty: none.
  virtual std::string updatedTouchfile() { return {}; }

  // The session ended with an error, or without an update.
  virtual void didAbortWithError(Updater& updater, const Error& error) = 0;
};

// Updates the launcher's own bundle, with windows of its own. Started once it is to do something by itself.
class Updater {
 public:
  virtual ~Updater() = default;

  // Begins the cycle of checks. A second start of one that runs is a success. Main thread only.
  virtual std::optional<Error> startUpdater() = 0;

  // Any thread.
  virtual bool sessionInProgress() const = 0;
  virtual bool canCheckForUpdates() const = 0;

  // A check that the user asked for. Shows its progress and its result. Main thread only.
  virtual void checkForUpdates() = 0;

  // Whether the updater also checks by itself from time to time. Kept over launches. Any thread.
  virtual void setAutomaticallyChecksForUpdates(bool automatically) = 0;

  // Forgets a feed that was once kept in the user defaults. Main thread only.
  virtual void clearFeedURLFromUserDefaults() = 0;
};

class Updaters {
 public:
  virtual ~Updaters() = default;

  // An updater whose host and application are the main bundle. It does nothing before it is started or asked.
  // The delegate must outlive it. Any thread.
  virtual std::unique_ptr<Updater> makeUpdater(UpdaterDelegate& delegate) = 0;
};

}  // namespace karno::platform
