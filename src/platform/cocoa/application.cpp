#include "platform/cocoa/application.h"

#include <cstdlib>

#include "platform/cocoa/application_setup.h"
#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "platform/posix/processes/ending_signals.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::send;

constexpr int kNoApplicationStatus = 1;
constexpr double kLastWordsSeconds = 0.25;
constexpr double kLookAtModalRunSeconds = 0.1;

// Lives as long as the process, also while exit() runs.
std::shared_ptr<ApplicationDelegate>& theDelegate() {
  static NeverDestroyed<std::shared_ptr<ApplicationDelegate>> delegate;
  return delegate.get();
}

objc::Boolean shouldHandleReopen(Id, Id, objc::Boolean hasVisibleWindows) {
  return static_cast<objc::Boolean>(theDelegate()->applicationShouldHandleReopen(hasVisibleWindows != 0));
}

// No window is restored; a Mac complains of a delegate that does not say how.
objc::Boolean supportsSecureRestorableState(Id, Id) { return true; }

// exit() comes next and takes every thread away: what the delegate's last words handed to one, such as a line
// for the log's writer, is given the time to be done.
void applicationWillTerminate(Id, Id) {
  theDelegate()->applicationWillTerminate();
  host().dispatch.sleep(kLastWordsSeconds);
}

Id sharedApplication() { return send(objc::classNamed("NSApplication"), "sharedApplication"); }

// For a signal, which waits for nobody's answer. AppKit refuses terminate: while a window is modal, and then
// nobody has been told yet.
void endForSignal() {
  objc::guardedAndLogged("end", [] {
    if (send(sharedApplication(), "modalWindow") == nullptr) {
      send<void>(sharedApplication(), "terminate:", nullptr);
    }
    applicationWillTerminate(nullptr, nullptr);
    std::exit(EXIT_SUCCESS);
  });
}

// Nothing is begun by a process that was told to end while it was starting.
void applicationDidFinishLaunching(Id, Id) {
  if (hasEndingSignalCome()) return endForSignal();
  theDelegate()->applicationDidFinishLaunching();
}

Class delegateClass() {
  return objc::ClassBuilder("KarnoApplicationDelegate", objc::classNamed("NSObject"))
      .method<applicationDidFinishLaunching>("applicationDidFinishLaunching:")
      .method<applicationWillTerminate>("applicationWillTerminate:")
      .method<shouldHandleReopen>("applicationShouldHandleReopen:hasVisibleWindows:")
      .method<supportsSecureRestorableState>("applicationSupportsSecureRestorableState:")
      .registerClass();
}

Class applicationClass() {
  return objc::ClassBuilder("KarnoApplication", objc::classNamed("NSApplication")).registerClass();
}

// GNUstep's application object replaces the handlers with one that runs terminate: on whatever thread the
// signal hit, and that does nothing before the application runs.
Id makeApplicationObject() {
  const EndingSignalsHeld whileReplaced;
  const Id application = send(applicationClass(), "sharedApplication");
  catchEndingSignalsAgain();
  return application;
}

// The application object does not own its delegate.
void makeApplication(const MainInterface& loadMainInterface) {
  catchEndingSignals([] { host().dispatch.mainEvents().async(endForSignal); });
  prepareForApplication();
  const Id application = makeApplicationObject();
  prepareApplication();
  static NeverDestroyed<objc::Object> delegate(
      objc::Object::adopting(send(send(delegateClass(), "alloc"), "init")));
  theDelegate() = loadMainInterface();
  send<void>(application, "setDelegate:", delegate.get());
}

// AppKit refuses terminate:, and asks nobody, while a window is modal. So that a quit is not lost which comes
// while somebody else's is, the updater's for one, it is sent when that has gone.
void terminateOnceNothingIsModal() {
  objc::guardedAndLogged("terminate", [] {
    if (send(sharedApplication(), "modalWindow") == nullptr) {
      send<void>(sharedApplication(), "terminate:", nullptr);
      return;
    }
    host().dispatch.globalQueue(QueuePriority::Default).async([] {
      host().dispatch.sleep(kLookAtModalRunSeconds);
      host().dispatch.mainEvents().async(terminateOnceNothingIsModal);
    });
  });
}

}  // namespace

bool CocoaApplication::isActive() const {
  const auto active = objc::guarded("is active", [] { return send<bool>(sharedApplication(), "isActive"); });
  return active && active.value();
}

void CocoaApplication::activateIgnoringOtherApps() {
  objc::guardedAndLogged("activate", [] {
    const Id application = sharedApplication();
    if (objc::respondsTo(application, "activate")) {
      send<void>(application, "activate");
    } else {
      send<void>(application, "activateIgnoringOtherApps:", true);
    }
  });
}

void CocoaApplication::setActivationPolicy(ActivationPolicy policy) {
  objc::guardedAndLogged("activation policy", [policy] {
    // Where there is no Dock, there is no policy.
    const Id application = sharedApplication();
    if (!objc::respondsTo(application, "setActivationPolicy:")) return;
    send<bool>(application, "setActivationPolicy:", static_cast<long>(policy));
  });
}

void CocoaApplication::requestUserAttention(AttentionRequest request) {
  objc::guardedAndLogged("attention", [request] {
    send<long>(sharedApplication(), "requestUserAttention:", static_cast<unsigned long>(request));
  });
}

void CocoaApplication::terminate() { terminateOnceNothingIsModal(); }

}  // namespace karno::platform::cocoa

namespace karno::platform {

int applicationMain(int argc, char** argv, const MainInterface& loadMainInterface) {
  objc::startRuntime(argc, argv);
  const objc::AutoreleasePool pool;
  install(nativePlatform(argc, argv));
  const auto failure = objc::guarded("application", [&] { cocoa::makeApplication(loadMainInterface); });
  if (failure) {
    host().consoleLog.log(failure->localizedDescription());
    return cocoa::kNoApplicationStatus;
  }
  return cocoa::runApplication(argc, argv);
}

}  // namespace karno::platform
