#pragma once

namespace karno::platform {

// The software updater behind the update manager.
class Updater {
 public:
  virtual ~Updater() = default;

  virtual bool sessionInProgress() const = 0;
  virtual bool canCheckForUpdates() const = 0;

  // A check that the user asked for. Shows its progress and its result. Main thread only.
  virtual void checkForUpdates() = 0;

  // Whether the updater also checks by itself from time to time. Kept over launches.
  virtual void setAutomaticallyChecksForUpdates(bool automatically) = 0;
};

// Stands where no updater is connected: never in a session, so that no update is ever taken to be under way,
// and with nothing to check.
class NoUpdater final : public Updater {
 public:
  bool sessionInProgress() const override { return false; }
  bool canCheckForUpdates() const override { return true; }
  void checkForUpdates() override {}
  void setAutomaticallyChecksForUpdates(bool) override {}
};

}  // namespace karno::platform
