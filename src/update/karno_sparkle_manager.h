#pragma once

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

  // Makes the updater treat the next launch as a first launch again; on disk when it returns. Any thread.
  void resetSparkle();
};

}  // namespace karno
