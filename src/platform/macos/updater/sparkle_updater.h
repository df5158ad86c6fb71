#pragma once
#include <cstdint>
#include <memory>

#include "platform/dispatch.h"
#include "platform/updater.h"

namespace karno::platform {

// How long one thread waits for the main thread, in nanoseconds.
struct SparkleWaits {
  std::int64_t question = 5'000'000'000;   // of whoever asks the updater or sets something
  std::int64_t delegate = 60'000'000'000;  // of a thread of the framework that wants an answer
};

// The updater framework of the bundle, behind the port. It is loaded, and its objects are made, on the main
// thread when something is first wanted of them. Where that fails the updater never starts: starting it says
// why, no session is in progress, nothing can be checked for, and the rest does nothing.
//
// The framework belongs to the main thread. A question from another thread is asked there and waited for, but
// not for ever, since the main thread may be waiting for the very thread that asks: while it ends the
// embedded application before an installation, the thread that learns of that end asks whether an update is
// in progress. So during the question of a relaunch other threads hear at once that a session is in progress
// and nothing can be checked for; at any other time, when the main thread does not answer in time, they hear
// what it answered last, and before its first answer the same as during a relaunch. What is set on another
// thread is waited for as long and takes effect even when that time runs out.
//
// Make it on any thread, destroy it on the main thread.
class SparkleUpdater final : public Updater {
 public:
  SparkleUpdater(UpdaterDelegate& delegate, Dispatch& dispatch, const SparkleWaits& waits);
  ~SparkleUpdater() override;
  SparkleUpdater(const SparkleUpdater&) = delete;
  SparkleUpdater& operator=(const SparkleUpdater&) = delete;

  std::optional<Error> startUpdater() override;
  bool sessionInProgress() const override;
  bool canCheckForUpdates() const override;
  void checkForUpdates() override;
  void setAutomaticallyChecksForUpdates(bool automatically) override;
  void clearFeedURLFromUserDefaults() override;

 private:
  class Core;

  const std::shared_ptr<Core> core_;  // blocks on their way to the main thread own it as well
};

// Makes updaters that hop to the main thread of `dispatch`, which must outlive them.
class SparkleUpdaters final : public Updaters {
 public:
  explicit SparkleUpdaters(Dispatch& dispatch, SparkleWaits waits = {})
      : dispatch_(dispatch), waits_(waits) {}
  std::unique_ptr<Updater> makeUpdater(UpdaterDelegate& delegate) override;

 private:
  Dispatch& dispatch_;
  const SparkleWaits waits_;
};

}  // namespace karno::platform
