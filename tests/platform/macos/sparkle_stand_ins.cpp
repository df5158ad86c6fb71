#include "sparkle_stand_ins.h"

#include <stdexcept>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using objc::Boolean;
using objc::Id;
using objc::Sel;

SparkleStandIns& framework() { return SparkleStandIns::current(); }

std::string ofMainBundle(Id bundle) {
  return bundle == StandIns::current().answerTo("mainBundle") ? "main" : "another";
}

// What an initialiser that answers nil does.
Id refused(Id self) {
  objc::send<void>(self, "release");
  return nullptr;
}

// The framework borrows its delegates: an object that is gone by then would be called all the same.
Id initDriver(Id self, Sel selector, Id bundle, Id delegate) {
  recordAndAnswer(selector, ofMainBundle(bundle));
  framework().delegateOfWindows = delegate;
  return framework().makesWindows ? self : refused(self);
}

Id initUpdater(Id self, Sel selector, Id host, Id application, Id driver, Id delegate) {
  recordAndAnswer(selector, ofMainBundle(host) + " " + ofMainBundle(application) +
                                (driver == nullptr ? " without windows" : ""));
  framework().delegate = delegate;
  return framework().makesUpdaters ? self : refused(self);
}

Boolean startUpdater(Id, Sel selector, Id* error) {
  recordAndAnswer(selector);
  *error = framework().startError.get();
  return static_cast<Boolean>(framework().starts);
}

Boolean sessionInProgress(Id, Sel selector) {
  recordAndAnswer(selector);
  return static_cast<Boolean>(framework().sessionInProgress);
}

Boolean canCheckForUpdates(Id, Sel selector) {
  recordAndAnswer(selector);
  return static_cast<Boolean>(framework().canCheckForUpdates);
}

void checkForUpdates(Id, Sel selector) { recordAndAnswer(selector); }

void setAutomatically(Id, Sel selector, Boolean automatically) {
  recordAndAnswer(selector, automatically != 0 ? "YES" : "NO");
}

Id clearFeedURL(Id, Sel selector) { return recordAndAnswer(selector); }

StandInClass updaterClassNamed(const char* name) {
  return StandInClass(name)
      .method("initWithHostBundle:applicationBundle:userDriver:delegate:", "@@:@@@@", initUpdater)
      .method("startUpdater:", "C@:^@", startUpdater)
      .method("sessionInProgress", "C@:", sessionInProgress)
      .method("canCheckForUpdates", "C@:", canCheckForUpdates)
      .method("checkForUpdates", "v@:", checkForUpdates)
      .method("setAutomaticallyChecksForUpdates:", "v@:C", setAutomatically);
}

Class updaterClass() {
  static const Class made = updaterClassNamed("StandInUpdater")
                                .method("clearFeedURLFromUserDefaults", "@@:", clearFeedURL)
                                .registerClass();
  return made;
}

Class driverClass() {
  static const Class made = StandInClass("StandInUserDriver")
                                .method("initWithHostBundle:delegate:", "@@:@@", initDriver)
                                .registerClass();
  return made;
}

Id sessionProperty(Id, Sel selector) {
  if (StandIns::current().raises()) throw std::runtime_error("raised by a stand-in");
  return answer(selector);
}
Id bundleWithPath(Id, Sel selector, Id path) { return recordAndAnswer(selector, shown(path)); }

Boolean load(Id, Sel selector, Id* error) {
  recordAndAnswer(selector);
  *error = framework().loadError.get();
  return static_cast<Boolean>(framework().loads);
}

Class frameworkBundleClass() {
  static const Class made = StandInClass("StandInFrameworkBundle")
                                .classMethod("mainBundle", "@@:", sessionProperty)
                                .classMethod("bundleWithPath:", "@@:@", bundleWithPath)
                                .method("bundlePath", "@@:", sessionProperty)
                                .method("loadAndReturnError:", "C@:^@", load)
                                .registerClass();
  return made;
}

Class itemClass() {
  static const Class made = StandInClass("StandInAppcastItem")
                                .method("title", "@@:", sessionProperty)
                                .method("displayVersionString", "@@:", sessionProperty)
                                .method("versionString", "@@:", sessionProperty)
                                .registerClass();
  return made;
}

Class requestClass() {
  static const Class made =
      StandInClass("StandInURLRequest").method("URL", "@@:", sessionProperty).registerClass();
  return made;
}

Id nothing(Id, Sel) { return nullptr; }
objc::Integer installationError(Id, Sel) { return 4005; }

Class updateErrorClass() {
  static const Class made = StandInClass("StandInUpdaterError")
                                .method("domain", "@@:", nothing)
                                .method("code", "q@:", installationError)
                                .method("userInfo", "@@:", nothing)
                                .method("localizedDescription", "@@:", nothing)
                                .registerClass();
  return made;
}

}  // namespace

SparkleStandIns::SparkleStandIns() {
  current_ = this;
  standIns_.answer("mainBundle", instanceOf(frameworkBundleClass()));
  standIns_.answer("bundlePath", objc::string("/Applications/Karno.app"));
  standIns_.answer("bundleWithPath:", instanceOf(frameworkBundleClass()));
  standIns_.answer("title", objc::string("Karno 2.0"));
  standIns_.answer("displayVersionString", objc::string("2.0"));
  standIns_.answer("versionString", objc::string("200"));
  bundle_.emplace(objc::ClassName("NSBundle"), frameworkBundleClass());
  driver_.emplace(objc::ClassName("SPUStandardUserDriver"), driverClass());
  updater_.emplace(objc::ClassName("SPUUpdater"), updaterClass());
}

SparkleStandIns::~SparkleStandIns() { current_ = nullptr; }

void SparkleStandIns::becomeMissing() {
  standIns_.answer("bundleWithPath:", objc::Object());
  becomeEmpty();
}

void SparkleStandIns::becomeEmpty() {
  updater_.reset();
  driver_.reset();
}

Class SparkleStandIns::oldUpdaterClass() {
  static const Class made = updaterClassNamed("StandInOldUpdater").registerClass();
  return made;
}

objc::Object standInItem() { return instanceOf(itemClass()); }
objc::Object standInRequest() { return instanceOf(requestClass()); }
objc::Object standInError() { return instanceOf(updateErrorClass()); }

}  // namespace karno::platform::trial
