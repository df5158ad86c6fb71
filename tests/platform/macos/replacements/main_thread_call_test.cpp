#include "platform/cocoa/runtime/main_thread_call.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "../../support/run_loop.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/callback.h"
#include "platform/cocoa/runtime/main_events.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "stand_in.h"

namespace karno::platform::trial {
namespace {

using cocoa::MainThreadCall;
using karno::test::ElementsAre;
using karno::test::turnRunLoop;
using ::testing::IsEmpty;

using Perform = void (*)(objc::Id, objc::Sel, objc::Sel, objc::Id, objc::Boolean);

// Writes the message down and does what the platform does.
void perform(objc::Id self, objc::Sel selector, objc::Sel action, objc::Id argument, objc::Boolean waits) {
  recordAndAnswer(selector, fmt::format("{} {} {}", sel_getName(action), shown(argument), waits));
  const Class root = class_getSuperclass(object_getClass(self));
  reinterpret_cast<Perform>(reinterpret_cast<void (*)()>(class_getMethodImplementation(root, selector)))(
      self, selector, action, argument, waits);
}

constexpr std::chrono::milliseconds kLongEnough = std::chrono::seconds(60);
constexpr std::chrono::milliseconds kMoment{30};
constexpr const char* kPerformed = "performSelectorOnMainThread:withObject:waitUntilDone: karnoCall: nil 0";

class MacMainThreadCall : public testing::Test {
 protected:
  MacMainThreadCall() {
    // As in the launcher: while the thread has none, GNUstep performs at once.
    objc::send(objc::classNamed("NSRunLoop"), "currentRunLoop");
    const cocoa::Callback any([](objc::Id) {});
    class_addMethod(object_getClass(any.target().get()),
                    sel_registerName("performSelectorOnMainThread:withObject:waitUntilDone:"),
                    reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(perform)), "v@::@C");
  }

  bool isOnMainThread_ = false;
  int calls_ = 0;
  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  std::unique_ptr<MainThreadCall> call_ = std::make_unique<MainThreadCall>([this] {
    ++calls_;
    isOnMainThread_ = cocoa::isMainThread();
  });
};

TEST_F(MacMainThreadCall, HappensOnceThereForARequestOfAnotherThread) {
  std::thread([this] {
    const cocoa::ThreadPoolScope pool;
    call_->request();
  }).join();
  EXPECT_EQ(calls_, 0);

  turnRunLoop([this] { return calls_ > 0; }, kLongEnough);
  turnRunLoop([] { return false; }, kMoment);

  EXPECT_EQ(calls_, 1);
  EXPECT_TRUE(isOnMainThread_);
  EXPECT_THAT(standIns_.messages(), ElementsAre(kPerformed));
}

TEST_F(MacMainThreadCall, HappensLaterForARequestOfTheMainThread) {
  call_->request();
  call_->request();
  EXPECT_EQ(calls_, 0);

  turnRunLoop([this] { return calls_ == 2; }, kLongEnough);

  EXPECT_EQ(calls_, 2);
}

TEST_F(MacMainThreadCall, DoesNotHappenOnceItIsGone) {
  call_->request();
  call_.reset();

  turnRunLoop([] { return false; }, kMoment);

  EXPECT_EQ(calls_, 0);
}

TEST_F(MacMainThreadCall, WhatItThrowsEndsOnTheConsole) {
  MainThreadCall failing([] { throw std::runtime_error("out of order"); });
  failing.request();

  turnRunLoop([this] { return standIns_.messages().size() == 2; }, kLongEnough);

  EXPECT_THAT(standIns_.messages(), ElementsAre(kPerformed, "log %@, karnoCall:: out of order"));
}

TEST_F(MacMainThreadCall, WhatTheRequestRaisesEndsOnTheConsole) {
  standIns_.raise();

  call_->request();

  EXPECT_THAT(standIns_.messages(),
              ElementsAre(kPerformed, "log %@, perform on the main thread: raised by a stand-in"));
}

TEST_F(MacMainThreadCall, CarriesTheMainEventsInOrder) {
  cocoa::MainEvents queue;
  std::vector<int> run;
  std::thread([&] {
    const cocoa::ThreadPoolScope pool;
    queue.async([&run] { run.push_back(1); });
    queue.async([&run] { run.push_back(2); });
    queue.async([&run] { run.push_back(3); });
  }).join();
  EXPECT_THAT(run, IsEmpty());

  turnRunLoop([&run] { return run.size() == 3; }, kLongEnough);

  EXPECT_THAT(run, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace karno::platform::trial
