#include "platform/macos/updater/sparkle_updater.h"

#include <atomic>
#include <utility>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/macos/dispatch/main_thread_work.h"
#include "platform/macos/updater/sparkle_delegate.h"
#include "platform/macos/updater/sparkle_framework.h"
#include "platform/macos/updater/sparkle_values.h"

namespace karno::platform {

// Main thread only, but for what says otherwise.
class SparkleUpdater::Core {
 public:
  Core(UpdaterDelegate& delegate, Updater& updater, Dispatch& dispatch, const SparkleWaits& waits)
      : audience_(std::make_shared<SparkleAudience>(delegate, updater, dispatch, waits.delegate)),
        questionNanosecondsMax_(waits.question) {}

  // From now on nobody is told anything, and nothing reaches the framework any more.
  void close() {
    audience_->delegate = nullptr;
    audience_->updater = nullptr;
    // The framework is not known to retain the delegate, so that one goes last.
    objects_ = SparkleObjects();
    delegate_.reset();
    isClosed_ = true;
  }

  std::optional<Error> start() {
    const objc::Id updater = made();
    if (isStarted_) return std::nullopt;
    if (updater == nullptr) return failure_;
    auto answer = objc::guarded("starting the updater", [updater]() -> std::optional<Error> {
      objc::Id error = nullptr;
      if (objc::send<bool>(updater, "startUpdater:", &error)) return std::nullopt;
      return sparkle::errorOf(error);
    });
    if (!answer) return answer.error();
    isStarted_ = !answer.value();
    return answer.value();
  }

  // The framework's updater, made on the first call; null when there is none.
  objc::Id made() {
    if (!isClosed_ && !isTried_) {
      isTried_ = true;
      auto objects = makeSparkleObjects([this] {
        delegate_ = std::make_unique<SparkleDelegate>(audience_);
        return delegate_->object();
      });
      if (objects) {
        objects_ = std::move(objects.value());
      } else {
        failure_ = objects.error();
      }
    }
    return objects_.updater.get();
  }

  // Any thread.
  bool isAskedForRelaunch() const { return audience_->relaunchQuestions > 0; }
  bool isMainThread() const { return audience_->dispatch.isMainThread(); }
  bool runOnMainThread(Block block) const {
    return platform::runOnMainThread(audience_->dispatch, std::move(block), questionNanosecondsMax_);
  }

  // The last answers of the framework, before the first one those of a session in progress. Any thread.
  std::atomic<bool> sessionInProgress = true;
  std::atomic<bool> canCheckForUpdates = false;

 private:
  const std::shared_ptr<SparkleAudience> audience_;
  const std::int64_t questionNanosecondsMax_;
  std::unique_ptr<SparkleDelegate> delegate_;
  SparkleObjects objects_;
  std::optional<Error> failure_;  // why there are no objects
  bool isTried_ = false;
  bool isStarted_ = false;
  bool isClosed_ = false;
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
  const cocoa::ThreadPoolScope pool;
  if (!core_->isMainThread() && core_->isAskedForRelaunch()) return true;
  core_->runOnMainThread([core = core_] {
    objc::guardedAndLogged("asking the updater for a session", [&core] {
      core->sessionInProgress = objc::send<bool>(core->made(), "sessionInProgress");
    });
  });
  return core_->sessionInProgress;
}

bool SparkleUpdater::canCheckForUpdates() const {
  const cocoa::ThreadPoolScope pool;
  if (!core_->isMainThread() && core_->isAskedForRelaunch()) return false;
  core_->runOnMainThread([core = core_] {
    objc::guardedAndLogged("asking the updater whether it can check", [&core] {
      core->canCheckForUpdates = objc::send<bool>(core->made(), "canCheckForUpdates");
    });
  });
  return core_->canCheckForUpdates;
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
    const objc::Id updater = core_->made();
    const objc::Selector clear = "clearFeedURLFromUserDefaults";
    const objc::Sel selector = objc::registered(clear);
    // Frameworks before 2.4 have no such method.
    if (objc::send<bool>(objc::send<Class>(updater, "class"), "instancesRespondToSelector:", selector)) {
      objc::send<objc::Id>(updater, clear);
    }
  });
}

std::unique_ptr<Updater> SparkleUpdaters::makeUpdater(UpdaterDelegate& delegate) {
  return std::make_unique<SparkleUpdater>(delegate, dispatch_, waits_);
}

}  // namespace karno::platform
