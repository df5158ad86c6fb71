#pragma once
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/linux/updater/update_services.h"
#include "platform/linux/updater/update_session.h"
#include "platform/linux/updater/update_texts.h"
#include "platform/updater.h"

namespace karno::platform::updates {

// Updates the launcher's bundle from an appcast, with the settings and in the order of the framework that
// does so on a Mac. Before it is started it can check, so that the end of a child that comes early is not
// taken for a part of an update; after a start that failed it cannot.
class LinuxUpdater final : public Updater {
 public:
  LinuxUpdater(UpdaterDelegate& delegate, UpdateServices services);
  ~LinuxUpdater() override;

  std::optional<Error> startUpdater() override;
  bool sessionInProgress() const override;
  bool canCheckForUpdates() const override;
  void checkForUpdates() override;
  void setAutomaticallyChecksForUpdates(bool automatically) override;
  void clearFeedURLFromUserDefaults() override;

 private:
  struct State;
  const std::shared_ptr<State> state_;
};

class LinuxUpdaters final : public Updaters {
 public:
  explicit LinuxUpdaters(UpdateServices services) : services_(services) {}

  std::unique_ptr<Updater> makeUpdater(UpdaterDelegate& delegate) override {
    return std::make_unique<LinuxUpdater>(delegate, services_);
  }

 private:
  const UpdateServices services_;
};

}  // namespace karno::platform::updates
