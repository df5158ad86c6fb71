#include "platform/macos/updater/sparkle_delegate.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/dispatch/main_thread_work.h"
#include "platform/macos/updater/sparkle_values.h"

namespace karno::platform {

namespace {

using Audience = std::shared_ptr<SparkleAudience>;

// The framework may call on any thread, also while the other side of an object goes.
std::mutex audienceMutex;

Audience audienceOf(objc::Id self) {
  const std::lock_guard lock(audienceMutex);
  const auto* const audience = static_cast<const Audience*>(objc::stateOf(self));
  return audience == nullptr ? nullptr : *audience;
}

void setAudience(objc::Id self, Audience* audience) {
  const std::lock_guard lock(audienceMutex);
  objc::setState(self, audience);
}

// Tells the delegate on the main thread, in the order of the calls.
template <class Tell>
void tell(objc::Id self, Tell tellDelegate) {
  const Audience audience = audienceOf(self);
  if (audience == nullptr) return;
  const auto told = [audience, tellDelegate = std::move(tellDelegate)] {
    if (audience->delegate != nullptr) tellDelegate(*audience->delegate, *audience->updater);
  };
  if (audience->dispatch.isMainThread()) {
    told();
  } else {
    audience->dispatch.mainEvents().async(told);
  }
}

// What the delegate answers on the main thread; absent when there is none, it takes too long or it throws.
template <class Answer, class Ask>
std::optional<Answer> ask(objc::Id self, const char* question, Ask askDelegate) {
  const Audience audience = audienceOf(self);
  if (audience == nullptr) return std::nullopt;
  const auto answer = std::make_shared<std::optional<Answer>>();
  const auto asked = [audience, question, answer, askDelegate = std::move(askDelegate)] {
    if (audience->delegate == nullptr) return;
    objc::guardedAndLogged(question, [&] { *answer = askDelegate(*audience); });
  };
  if (!runOnMainThread(audience->dispatch, asked, audience->answerNanosecondsMax)) return std::nullopt;
  return std::move(*answer);
}

objc::Id feedURLString(objc::Id self, objc::Id) {
  const auto feed = ask<std::string>(self, "feedURLStringForUpdater:", [](SparkleAudience& audience) {
    return audience.delegate->feedURLStringForUpdater(*audience.updater);
  });
  if (!feed) return nullptr;
  const objc::Object url = objc::string(*feed);
  return objc::send(objc::send(url, "retain"), "autorelease");
}

objc::Boolean shouldRelaunch(objc::Id self, objc::Id) {
  const auto relaunch = ask<bool>(self, "updaterShouldRelaunchApplication:", [](SparkleAudience& audience) {
    return audience.delegate->updaterShouldRelaunchApplication(*audience.updater);
  });
  return static_cast<objc::Boolean>(relaunch.value_or(false));
}

void didFinishLoadingAppcast(objc::Id self, objc::Id, objc::Id) {
  tell(self, [](UpdaterDelegate& delegate, Updater& updater) { delegate.didFinishLoadingAppcast(updater); });
}

void didNotFindUpdate(objc::Id self, objc::Id, objc::Id error) {
  tell(self, [reason = sparkle::errorOf(error)](UpdaterDelegate& delegate, Updater& updater) {
    delegate.updaterDidNotFindUpdate(updater, reason);
  });
}

void userDidMakeChoice(objc::Id self, objc::Id, objc::Integer choice, objc::Id update, objc::Id) {
  tell(self, [choice, item = sparkle::appcastItemOf(update)](UpdaterDelegate& delegate, Updater& updater) {
    delegate.userDidMakeChoice(updater, choice, item);
  });
}

void willDownload(objc::Id self, objc::Id, objc::Id update, objc::Id request) {
  tell(self,
       [item = sparkle::appcastItemOf(update), url = sparkle::urlOf(request)](
           UpdaterDelegate& delegate, Updater& updater) { delegate.willDownloadUpdate(updater, item, url); });
}

void failedToDownload(objc::Id self, objc::Id, objc::Id update, objc::Id error) {
  tell(self, [item = sparkle::appcastItemOf(update), reason = sparkle::errorOf(error)](
                 UpdaterDelegate& delegate, Updater& updater) {
    delegate.failedToDownloadUpdate(updater, item, reason);
  });
}

void userDidCancelDownload(objc::Id self, objc::Id) {
  tell(self, [](UpdaterDelegate& delegate, Updater& updater) { delegate.userDidCancelDownload(updater); });
}

void didAbort(objc::Id self, objc::Id, objc::Id error) {
  tell(self, [reason = sparkle::errorOf(error)](UpdaterDelegate& delegate, Updater& updater) {
    delegate.didAbortWithError(updater, reason);
  });
}

// The stages that come with an item and nothing else.
template <void (UpdaterDelegate::*Stage)(Updater&, const AppcastItem&)>
void reached(objc::Id self, objc::Id, objc::Id update) {
  tell(self, [item = sparkle::appcastItemOf(update)](UpdaterDelegate& delegate, Updater& updater) {
    (delegate.*Stage)(updater, item);
  });
}

// Made once the framework has been loaded, which brings the protocols.
Class delegateClass() {
  static const Class made =
      objc::ClassBuilder("KarnoSparkleDelegate", objc::classNamed("NSObject"))
          .state()
          .adopt("SPUUpdaterDelegate")
          .adopt("SPUStandardUserDriverDelegate")
          .method<feedURLString>("feedURLStringForUpdater:")
          .method<didFinishLoadingAppcast>("updater:didFinishLoadingAppcast:")
          .method<reached<&UpdaterDelegate::didFindValidUpdate>>("updater:didFindValidUpdate:")
          .method<didNotFindUpdate>("updaterDidNotFindUpdate:error:")
          .method<userDidMakeChoice>("updater:userDidMakeChoice:forUpdate:state:")
          .method<willDownload>("updater:willDownloadUpdate:withRequest:")
          .method<reached<&UpdaterDelegate::didDownloadUpdate>>("updater:didDownloadUpdate:")
          .method<failedToDownload>("updater:failedToDownloadUpdate:error:")
          .method<userDidCancelDownload>("userDidCancelDownload:")
          .method<reached<&UpdaterDelegate::willExtractUpdate>>("updater:willExtractUpdate:")
          .method<reached<&UpdaterDelegate::didExtractUpdate>>("updater:didExtractUpdate:")
          .method<reached<&UpdaterDelegate::willInstallUpdate>>("updater:willInstallUpdate:")
          .method<shouldRelaunch>("updaterShouldRelaunchApplication:")
          .method<didAbort>("updater:didAbortWithError:")
          .registerClass();
  return made;
}

}  // namespace

SparkleDelegate::SparkleDelegate(std::shared_ptr<SparkleAudience> audience)
    : audience_(std::move(audience)),
      object_(objc::Object::adopting(objc::send(objc::send(delegateClass(), "alloc"), "init"))) {
  setAudience(object_.get(), &audience_);
}

SparkleDelegate::~SparkleDelegate() { setAudience(object_.get(), nullptr); }

}  // namespace karno::platform
