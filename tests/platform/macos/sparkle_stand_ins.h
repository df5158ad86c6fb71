#pragma once
#include <objc/runtime.h>

#include <optional>
#include <string>

#include "platform/cocoa/runtime/objc.h"
#include "stand_in.h"

namespace karno::platform::trial {

// Small classes in the place of the updater framework and of NSBundle. What they are sent is in
// StandIns::messages(), the answers of an item or a request are those of StandIns::answer(). One at a time.
class SparkleStandIns {
 public:
  SparkleStandIns();
  ~SparkleStandIns();
  SparkleStandIns(const SparkleStandIns&) = delete;
  SparkleStandIns& operator=(const SparkleStandIns&) = delete;

  StandIns& standIns() { return standIns_; }

  // What the framework answers from now on.
  bool loads = true;
  bool starts = true;
  bool sessionInProgress = false;
  bool canCheckForUpdates = true;
  bool makesWindows = true;
  bool makesUpdaters = true;
  objc::Object loadError;   // also where it loads all the same
  objc::Object startError;  // likewise

  // The object that the updater was given to tell, and whether it was given the same to its windows.
  objc::Id delegate = nullptr;
  objc::Id delegateOfWindows = nullptr;

  // A framework like those before 2.4, which cannot clear a feed.
  void becomeOld() { updater_.emplace(objc::ClassName("SPUUpdater"), oldUpdaterClass()); }

  // The bundle has no framework.
  void becomeMissing();

  // The framework has none of the classes that are wanted of it.
  void becomeEmpty();

  static SparkleStandIns& current() { return *current_; }

 private:
  static Class oldUpdaterClass();

  static inline SparkleStandIns* current_ = nullptr;
  StandIns standIns_;
  std::optional<objc::ClassOverride> bundle_;
  std::optional<objc::ClassOverride> driver_;
  std::optional<objc::ClassOverride> updater_;
};

// What the framework sends to its delegate; as there, only if the delegate has the method.
template <class Reply = void, class... Arguments>
Reply tellDelegate(objc::Id delegate, const char* message, Arguments... arguments) {
  const objc::Sel selector = sel_registerName(message);
  if (class_respondsToSelector(object_getClass(delegate), selector) == 0) return Reply();
  using Method = Reply (*)(objc::Id, objc::Sel, Arguments...);
  return reinterpret_cast<Method>(objc::detail::messageFunction(delegate, selector, false))(
      delegate, selector, arguments...);
}

// An appcast item and a download request of the framework.
objc::Object standInItem();
objc::Object standInRequest();

// An error with a code and nil for everything else.
objc::Object standInError();

}  // namespace karno::platform::trial
