#pragma once
#include <cstdint>
#include <memory>

#include "platform/cocoa/runtime/objc.h"
#include "platform/dispatch.h"
#include "platform/updater.h"

namespace karno::platform {

// Whom the framework's delegate object asks and tells, as long as there is somebody. Blocks on their way to
// the main thread own it.
struct SparkleAudience {
  SparkleAudience(UpdaterDelegate& itsDelegate, Updater& itsUpdater, Dispatch& itsDispatch,
                  std::int64_t nanosecondsMax)
      : delegate(&itsDelegate),
        updater(&itsUpdater),
        dispatch(itsDispatch),
        answerNanosecondsMax(nanosecondsMax) {}

  UpdaterDelegate* delegate;  // main thread only; null once it must not be called any more
  Updater* updater;           // main thread only
  Dispatch& dispatch;
  const std::int64_t answerNanosecondsMax;
};

// The Objective-C object that the updater framework and its windows ask and tell, in front of an
// UpdaterDelegate. It has the methods of that interface and no other, since their mere presence means
// something to the framework; above all it does not claim to support gentle reminders of scheduled updates.
//
// The framework promises the main thread for some of its calls only. One that comes on another thread goes on
// to the main thread; where an answer is wanted the calling thread waits for it, at most
// `answerNanosecondsMax` long. No answer in time, or an exception, which is written to the console log, means
// no feed and no relaunch.
//
// Made and destroyed on the main thread. The object may outlive this and then does nothing.
class SparkleDelegate {
 public:
  explicit SparkleDelegate(std::shared_ptr<SparkleAudience> audience);
  ~SparkleDelegate();
  SparkleDelegate(const SparkleDelegate&) = delete;
  SparkleDelegate& operator=(const SparkleDelegate&) = delete;

  const objc::Object& object() const { return object_; }

 private:
  std::shared_ptr<SparkleAudience> audience_;
  objc::Object object_;
};

}  // namespace karno::platform
