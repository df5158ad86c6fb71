#pragma once
#include <cstdint>
#include <memory>

#include "platform/cocoa/runtime/selectors.h"
#include "platform/dispatch.h"
#include "platform/updater.h"

namespace karno::platform {

// How long one thread waits for the main thread, in nanoseconds.
struct SparkleWaits {
  std::int64_t question = 5'000'000'000;   // of whoever has the updater made or sets something
  std::int64_t delegate = 60'000'000'000;  // of a thread of the framework that wants an answer
};

// The updater framework of the bundle, behind the port. It is loaded, and its objects are made, on the main
// thread when something is first wanted of them. Where that fails the updater never starts: starting it says
// why, no session is in progress, nothing can be checked for, and the rest does nothing.
//
// The two questions are put to the framework by whoever asks, on the thread that asks, each time: the main
// thread may be waiting for the very thread that asks, as it does while it ends the embedded application
// before an installation. Only the making of the objects, and what is set, belongs to the main thread;
// another thread waits for that, but not for ever. What is set takes effect even when that time runs out.
// What the framework raises at a question counts as a session in progress and as nothing that can be checked
// for.
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

  bool answerOf(const char* what, objc::Selector question, bool whenRaised) const;

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
