#pragma once

namespace karno::platform {

// The software updater behind the update manager.
class Updater {
 public:
  virtual ~Updater() = default;

  virtual bool sessionInProgress() const = 0;
  virtual bool canCheckForUpdates() const = 0;
};

// Stands where no updater is connected: never in a session, so that no update is ever taken to be under way.
class NoUpdater final : public Updater {
 public:
  bool sessionInProgress() const override { return false; }
  bool canCheckForUpdates() const override { return true; }
};

}  // namespace karno::platform
