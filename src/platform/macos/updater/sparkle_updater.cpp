#include "platform/macos/updater/sparkle_updater.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/macos/dispatch/main_thread_work.h"
#include "platform/macos/updater/sparkle_delegate.h"
#include "platform/macos/updater/sparkle_framework.h"
#include "platform/macos/updater/sparkle_values.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

// Main thread only, but for what says otherwise.
class SparkleUpdater::Core : public std::enable_shared_from_this<Core> {
 public:
  Core(UpdaterDelegate& delegate, Updater& updater, Dispatch& dispatch, const SparkleWaits& waits)
      : audience_(std::make_shared<SparkleAudience>(delegate, updater, dispatch, waits.delegate)),
        questionNanosecondsMax_(waits.question) {}

  // From now on nobody is told anything, and nothing reaches the framework any more.
  void close() {
    audience_->delegate = nullptr;
    audience_->updater = nullptr;
    isTried_ = true;
    // The framework is not known to retain the delegate, so that one goes last.
    keep(SparkleObjects());
    delegate_.reset();
  }

  std::optional<Error> start() {
    const objc::Object updater = made();
    if (isStarted_) return std::nullopt;
    if (!updater) return failure_;
    auto answer = objc::guarded("starting the updater", [&updater]() -> std::optional<Error> {
      objc::Id error = nullptr;
      if (objc::send<bool>(updater, "startUpdater:", &error)) return std::nullopt;
      return sparkle::errorOf(error);
    });
    if (!answer) return answer.error();
    isStarted_ = !answer.value();
    return answer.value();
  }

  // The framework's updater, none where there is none. The first call has it made, on the main thread. Any
  // thread.
  objc::Object made() {
    if (!isTried_) runOnMainThread([core = shared_from_this()] { core->make(); });
    const std::lock_guard lock(mutex_);
    return objects_.updater;
  }

  // Any thread.
  bool runOnMainThread(Block block) const {
    return platform::runOnMainThread(audience_->dispatch, std::move(block), questionNanosecondsMax_);
  }

 private:
  void make() {
    if (isTried_) return;
    auto objects = makeSparkleObjects([this] {
      delegate_ = std::make_unique<SparkleDelegate>(audience_);
      return delegate_->object();
    });
    if (objects) {
      keep(std::move(objects.value()));
    } else {
      failure_ = objects.error();
    }
    isTried_ = true;
  }

  void keep(SparkleObjects objects) {
    const std::lock_guard lock(mutex_);
    std::swap(objects_, objects);
  }

  const std::shared_ptr<SparkleAudience> audience_;
  const std::int64_t questionNanosecondsMax_;
  std::unique_ptr<SparkleDelegate> delegate_;
  std::mutex mutex_;  // guards the objects
  SparkleObjects objects_;
  std::optional<Error> failure_;       // why there are no objects
  std::atomic<bool> isTried_ = false;  // any thread
  bool isStarted_ = false;
};

SparkleUpdater::SparkleUpdater(UpdaterDelegate& delegate, Dispatch& dispatch, const SparkleWaits& waits)
    : core_(std::make_shared<Core>(delegate, *this, dispatch, waits)) {}

SparkleUpdater::~SparkleUpdater() {
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("letting the updater go", [this] { core_->close(); });
}

std::optional<Error> SparkleUpdater::startUpdater() {
  const objc::AutoreleasePool pool;
  return core_->start();
}

bool SparkleUpdater::sessionInProgress() const {
  return answerOf("asking the updater for a session", "sessionInProgress", true);
}

bool SparkleUpdater::canCheckForUpdates() const {
  return answerOf("asking the updater whether it can check", "canCheckForUpdates", false);
}

bool SparkleUpdater::answerOf(const char* what, objc::Selector question, bool whenRaised) const {
  const cocoa::ThreadPoolScope pool;
  const auto answer = objc::guarded(what, [&] { return objc::send<bool>(core_->made(), question); });
  if (answer) return answer.value();
  writeConsoleLine(answer.error().localizedDescription());
  return whenRaised;
}

void SparkleUpdater::checkForUpdates() {
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("checking for updates",
                         [this] { objc::send<void>(core_->made(), "checkForUpdates"); });
}

void SparkleUpdater::setAutomaticallyChecksForUpdates(bool automatically) {
  const cocoa::ThreadPoolScope pool;
  core_->runOnMainThread([core = core_, automatically] {
    objc::guardedAndLogged("setting automatic checks", [&core, automatically] {
      objc::send<void>(core->made(), "setAutomaticallyChecksForUpdates:", automatically);
    });
  });
}

void SparkleUpdater::clearFeedURLFromUserDefaults() {
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("clearing the updater's feed", [this] {
    const objc::Object updater = core_->made();
    const objc::Selector clear = "clearFeedURLFromUserDefaults";
    if (objc::respondsTo(updater, clear)) objc::send(updater, clear);
  });
}

std::unique_ptr<Updater> SparkleUpdaters::makeUpdater(UpdaterDelegate& delegate) {
  return std::make_unique<SparkleUpdater>(delegate, dispatch_, waits_);
}

}  // namespace karno::platform
