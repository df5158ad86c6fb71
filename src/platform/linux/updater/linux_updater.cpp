#include "platform/linux/updater/linux_updater.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "platform/linux/updater/setting_keys.h"
#include "platform/linux/updater/telling.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/platform.h"
#include "platform/public_key.h"
#include "platform/version_order.h"

namespace karno::platform::updates {
namespace {

constexpr double kUsualIntervalSeconds = 86400;
constexpr double kShortestIntervalSeconds = 3600;

// A longer wait is done in pieces, so that a change of the clock or of a setting is noticed in time.
constexpr double kLookIntervalSeconds = 300;

// Why updates cannot be had at all.
std::optional<Error> misconfiguration() {
  if (!host().bundles.mainBundle().bundleIdentifier())
    return updateError(UpdateErrorCode::InvalidHostIdentifier, "The application has no identifier.");
  if (infoText("CFBundleVersion").empty())
    return updateError(UpdateErrorCode::InvalidHostVersion, "The application has no version.");
  if (!looksLikePublicKey(infoText(kPublicKeyKey)))
    return updateError(UpdateErrorCode::NoPublicKey, "The application has no key to verify updates with.");
  return std::nullopt;
}

}  // namespace

// Shared with blocks that come later.
struct LinuxUpdater::State : std::enable_shared_from_this<State> {
  State(LinuxUpdater& ofUpdater, UpdaterDelegate& ofDelegate, UpdateServices ofServices)
      : updater(ofUpdater), delegate(ofDelegate), services(ofServices) {}

  bool checksAutomatically() const {
    return plainBoolean(services.settings.objectForKey(kAutomaticChecksKey));
  }

  double secondsUntilNextCheck() const {
    const auto interval = services.settings.objectForKey(kCheckIntervalKey);
    double seconds = kUsualIntervalSeconds;
    if (interval && interval->get<std::int64_t>() != nullptr)
      seconds = static_cast<double>(*interval->get<std::int64_t>());
    if (const double* const real = interval ? interval->get<double>() : nullptr; real && !std::isnan(*real))
      seconds = *real;
    const auto last = services.settings.objectForKey(kLastCheckKey);
    if (!last || last->get<Date>() == nullptr) return 0;
    const double age = secondsBetween(*last->get<Date>(), host().clock.now());
    // A check that lies in the future was noted by a wrong clock.
    return age < 0 ? 0 : std::max(seconds, kShortestIntervalSeconds) - age;
  }

  void begin(bool isUserAsking) {
    inSession = true;
    // The session is this one's own.
    const auto ended = [weak = weak_from_this()] {
      const auto self = weak.lock();
      if (!self) return;
      self->inSession = false;
      self->session.reset();
    };
    if (!texts) texts = std::make_shared<UpdateTexts>(host().bundles.mainBundle(), host().files);
    session = std::make_shared<UpdateSession>(UpdateSession::Parts{.updater = updater,
                                                                   .delegate = delegate,
                                                                   .services = services,
                                                                   .texts = texts,
                                                                   .isUserAsking = isUserAsking,
                                                                   .ended = ended});
    const std::shared_ptr<UpdateSession> begun = session;
    begun->begin();
  }

  void checkIfDue() {
    if (isStarted && !inSession && checksAutomatically() && secondsUntilNextCheck() <= 0) begin(false);
  }

  // On a thread of its own for the life of the process.
  void lookFromTimeToTime() {
    while (true) {
      const double wait = std::clamp(secondsUntilNextCheck(), 1.0, kLookIntervalSeconds);
      host().dispatch.sleep(checksAutomatically() ? wait : kLookIntervalSeconds);
      host().dispatch.mainEvents().async([self = shared_from_this()] { self->checkIfDue(); });
    }
  }

  // As on a Mac: the first launch is left in peace, from the second one on the user is asked once.
  void askForPermissionIfDue() {
    const bool hasLaunchedBefore = plainBoolean(services.settings.objectForKey(kHasLaunchedKey));
    services.settings.setObject(true, kHasLaunchedKey);
    if (services.settings.objectForKey(kAutomaticChecksKey) || !hasLaunchedBefore) return;
    const UpdateTexts sentences(host().bundles.mainBundle(), host().files);
    inSession = true;
    const long answer = host().alerts.runModal(
        {.style = AlertStyle::Informational,
         .messageText = sentences.text("PERMISSION"),
         .informativeText = sentences.text("PERMISSION_EXPLANATION", {{"name", "Karno"}}),
         .buttons = {{.title = sentences.text("PERMISSION_YES"), .keyEquivalent = "\r"},
                     {.title = sentences.text("PERMISSION_NO"), .keyEquivalent = "\033"}}});
    inSession = false;
    // The administrator, or the client, may have decided while the question was on the screen.
    if (services.settings.objectForKey(kAutomaticChecksKey)) return;
    services.settings.setObject(answer == kAlertFirstButtonReturn, kAutomaticChecksKey);
  }

  // Before the application looks for its touch file, which a killed installer leaves.
  void takeVerdict() {
    left = services.installer.takeVerdict(host().bundles.mainBundle().bundlePath());
    const std::string touchfile = delegate.updatedTouchfile();
    if (left && *left && !isInstalled(left->value()) && !touchfile.empty()) host().files.remove(touchfile);
  }

  // Somebody may have done it by hand since.
  static bool isInstalled(const InstallVerdict& verdict) {
    return !verdict.version.empty() && compareVersions(infoText("CFBundleVersion"), verdict.version) >= 0;
  }

  // Nothing runs after an update, so nobody has heard yet of one that came to nothing.
  void tellOfFailedInstallation() {
    if (!left) return;
    if (!*left) {
      host().notices.warn("Updates: what the last installation left behind could not be read. Reason: " +
                          left->error().description());
      return;
    }
    const InstallVerdict& verdict = left->value();
    if (isInstalled(verdict)) return;
    delegate.didAbortWithError(updater, updateError(UpdateErrorCode::Installation, verdict.reason));
    const UpdateTexts sentences(host().bundles.mainBundle(), host().files);
    const auto text = [&](std::string_view token) {
      return sentences.text(token, {{"name", infoText("CFBundleName")},
                                    {"old", infoText("CFBundleShortVersionString")},
                                    {"reason", verdict.reason}});
    };
    tellUser(text("FAILED"), text("FAILED_AFTER_QUIT"), text("OK"));
  }

  // The user asked, so the user hears why there is no check, and the delegate that there is none.
  void tellWhyItCannotStart() {
    const UpdateTexts sentences(host().bundles.mainBundle(), host().files);
    delegate.didAbortWithError(updater, *startFailure);
    tellUser(sentences.text("CHECK_FAILED"), startFailure->localizedDescription(), sentences.text("OK"));
  }

  void beginCycle() {
    tellOfFailedInstallation();
    askForPermissionIfDue();
    checkIfDue();
    host().dispatch.globalQueue(QueuePriority::Background).async([self = shared_from_this()] {
      self->services.folders.removeLeftoversBeside(host().bundles.mainBundle().bundlePath());
      self->lookFromTimeToTime();
    });
  }

  LinuxUpdater& updater;
  UpdaterDelegate& delegate;
  const UpdateServices services;
  std::shared_ptr<const UpdateTexts> texts;
  std::shared_ptr<UpdateSession> session;
  std::atomic<bool> inSession{false};
  std::atomic<bool> isStarted{false};
  std::atomic<bool> hasFailedToStart{false};
  std::optional<Error> startFailure;           // main thread only, as is what follows
  std::optional<Result<InstallVerdict>> left;  // by the last installation
};

LinuxUpdater::LinuxUpdater(UpdaterDelegate& delegate, UpdateServices services)
    : state_(std::make_shared<State>(*this, delegate, services)) {}

LinuxUpdater::~LinuxUpdater() = default;

std::optional<Error> LinuxUpdater::startUpdater() {
  if (state_->isStarted) return std::nullopt;
  const std::optional<Error> error = misconfiguration();
  state_->hasFailedToStart = error.has_value();
  state_->startFailure = error;
  if (error) return error;
  state_->isStarted = true;
  state_->takeVerdict();
  host().dispatch.mainEvents().async([state = state_] { state->beginCycle(); });
  return std::nullopt;
}

bool LinuxUpdater::sessionInProgress() const { return state_->inSession; }

bool LinuxUpdater::canCheckForUpdates() const { return !state_->hasFailedToStart; }

void LinuxUpdater::checkForUpdates() {
  if (state_->hasFailedToStart) return state_->tellWhyItCannotStart();
  if (!state_->inSession) return state_->begin(true);
  if (const auto session = state_->session) session->bringToFront();
}

void LinuxUpdater::setAutomaticallyChecksForUpdates(bool automatically) {
  state_->services.settings.setObject(automatically, kAutomaticChecksKey);
  host().dispatch.mainEvents().async([state = state_] { state->checkIfDue(); });
}

void LinuxUpdater::clearFeedURLFromUserDefaults() { state_->services.settings.removeObject(kFeedKey); }

}  // namespace karno::platform::updates
