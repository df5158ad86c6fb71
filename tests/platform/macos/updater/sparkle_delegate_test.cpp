#include "platform/macos/updater/sparkle_delegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "../recording_updater_delegate.h"
#include "../sparkle_stand_ins.h"
#include "platform/cocoa/runtime/class_builder.h"
#include "platform/macos/updater/sparkle_updater.h"

namespace karno::platform::trial {
namespace {

using ::testing::UnorderedElementsAre;

// The class of the object that the framework is given.
class MacUpdaterDelegateObject : public testing::Test {
 protected:
  MacUpdaterDelegateObject() { updater_->startUpdater(); }

  Class cls() const { return object_getClass(framework_.delegate); }

  // Selectors with their encodings, in which B stands for BOOL, as on Apple silicon.
  std::vector<std::string> ownMethods() const {
    unsigned count = 0;
    const std::unique_ptr<Method, void (*)(void*)> methods(class_copyMethodList(cls(), &count), ::free);
    std::vector<std::string> found;
    for (unsigned index = 0; index < count; ++index) {
      const Method method = methods.get()[index];
      std::string encoding = method_getTypeEncoding(method);
      if (encoding.front() == *objc::detail::encodingOf<objc::Boolean>()) encoding.front() = 'B';
      found.push_back(std::string(sel_getName(method_getName(method))) + " " + encoding);
    }
    return found;
  }

  const objc::AutoreleasePool pool_;
  SparkleStandIns framework_;
  RecordingUpdaterDelegate delegate_;
  std::unique_ptr<Updater> updater_ = SparkleUpdaters(host().dispatch).makeUpdater(delegate_);
};

TEST_F(MacUpdaterDelegateObject, HasTheMethodsOfTheInterfaceWithTheirEncodingsAndNoOther) {
  EXPECT_THAT(ownMethods(),
              UnorderedElementsAre("feedURLStringForUpdater: @@:@",                       //
                                   "updater:didFinishLoadingAppcast: v@:@@",              //
                                   "updater:didFindValidUpdate: v@:@@",                   //
                                   "updaterDidNotFindUpdate:error: v@:@@",                //
                                   "updater:userDidMakeChoice:forUpdate:state: v@:@q@@",  //
                                   "updater:willDownloadUpdate:withRequest: v@:@@@",      //
                                   "updater:didDownloadUpdate: v@:@@",                    //
                                   "updater:failedToDownloadUpdate:error: v@:@@@",        //
                                   "userDidCancelDownload: v@:@",                         //
                                   "updater:willExtractUpdate: v@:@@",                    //
                                   "updater:didExtractUpdate: v@:@@",                     //
                                   "updater:willInstallUpdate: v@:@@",                    //
                                   "updaterShouldRelaunchApplication: B@:@",              //
                                   "updater:didAbortWithError: v@:@@"));
}

TEST_F(MacUpdaterDelegateObject, ClaimsNoGentleReminders) {
  const objc::Sel question = sel_registerName("supportsGentleScheduledUpdateReminders");

  EXPECT_FALSE(class_respondsToSelector(cls(), question));
}

}  // namespace
}  // namespace karno::platform::trial
