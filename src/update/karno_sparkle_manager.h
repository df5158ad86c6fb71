#pragma once
#include <string>

namespace karno {

// The one owner of the software updates of the whole bundle. No updater is connected to it yet: it answers
// that no update is under way.
class KarnoSparkleManager {
 public:
  static KarnoSparkleManager& instance();

  // Starts the updater. Called on a background thread after each fresh launch of the embedded application.
  static void start();

  // Whether the updater is in a session or cannot check for updates at this moment. Both are asked every
  // time.
  bool isUpdateInProgress() const;

  // The feed in use: the deployment's, or the one that the file "KARNOUPGRADE.debug" in the home folder
  // names. Read afresh every time.
  std::string feedURL() const;

  // A check that the user asked for. Ignored while a session is under way. Main thread only.
  void checkForUpdates();

  // Hands the choice to the updater. The getter's flag deliberately stays as it was.
  void setCheckForUpdatesAutomatically(bool automatically);
  bool checkForUpdatesAutomatically() const { return false; }

  // Makes the updater treat the next launch as a first launch again; on disk when it returns. Any thread.
  void resetSparkle();
};

}  // namespace karno
