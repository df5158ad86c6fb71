#include "updater_session.h"

#include "world.h"

namespace karno::simulation {
namespace {

constexpr double kForeverSeconds = 1e9;
constexpr const char* kArchive = "https://updates.vantul.it/Karno-9.9.zip";

platform::Error updaterError(int code, const std::string& text) {
  return {"SUSparkleErrorDomain", code, {{std::string(platform::kLocalizedDescriptionKey), text}}};
}

}  // namespace

class UpdaterSession::Handle final : public platform::Updater {
 public:
  explicit Handle(UpdaterSession& session) : session_(session) {}

  std::optional<platform::Error> startUpdater() override {
    session_.world_.call("Updater::startUpdater");
    session_.isStarted_ = session_.canStart;
    if (session_.canStart) return std::nullopt;
    session_.canCheck = false;
    return updaterError(1, "The updater is not set up.");
  }
  bool sessionInProgress() const override {
    session_.world_.call("Updater::sessionInProgress");
    return session_.inSession;
  }
  bool canCheckForUpdates() const override {
    session_.world_.call("Updater::canCheckForUpdates");
    return session_.canCheck && !session_.inSession;
  }
  void checkForUpdates() override {
    session_.world_.machine.scheduler.requireMainThread("Updater::checkForUpdates");
    session_.world_.call("Updater::checkForUpdates");
    Planned planned{"nothing", 0.5};
    if (!session_.requested_.empty()) {
      planned = session_.requested_.front();
      session_.requested_.pop_front();
    }
    session_.begin(planned);
  }
  void setAutomaticallyChecksForUpdates(bool) override { session_.world_.call("Updater::setAutomatically"); }
  void clearFeedURLFromUserDefaults() override {
    session_.world_.machine.scheduler.requireMainThread("Updater::clearFeedURLFromUserDefaults");
  }

 private:
  UpdaterSession& session_;
};

std::unique_ptr<platform::Updater> UpdaterSession::makeUpdater(platform::UpdaterDelegate& delegate) {
  auto handle = std::make_unique<Handle>(*this);
  delegate_ = &delegate;
  updater_ = handle.get();
  return handle;
}

void UpdaterSession::beginScheduled(const std::string& end, double pauseSeconds) {
  if (isStarted_) begin({end, pauseSeconds});
}

void UpdaterSession::begin(const Planned& planned) {
  if (inSession || !canCheck) return;
  inSession = true;
  world_.note("updater", "a session that ends with: " + planned.end);
  world_.machine.scheduler.addThread("updater", [this, planned] { live(planned); });
}

// Blocks the updater's thread until main has done it.
void UpdaterSession::step(const Planned& planned, const std::function<void()>& block) {
  world_.machine.scheduler.sleep(planned.pauseSeconds);
  auto isDone = std::make_shared<bool>(false);
  world_.machine.scheduler.addToMain(test::MainLane::Events, [isDone, block] {
    block();
    *isDone = true;
  });
  world_.machine.scheduler.waitUntil([isDone] { return *isDone; }, kForeverSeconds);
}

void UpdaterSession::over(const Planned& planned, const std::string& why) {
  step(planned, [this, why] { delegate_->didAbortWithError(*updater_, updaterError(2001, why)); });
  inSession = false;
  world_.note("updater", "over");
}

void UpdaterSession::live(const Planned& planned) {
  const auto& end = planned.end;
  const platform::AppcastItem item{.title = "Karno 9.9", .displayVersionString = "9.9"};
  const auto tell = [&](auto call) { step(planned, [this, call] { call(*delegate_, *updater_); }); };
  using Delegate = platform::UpdaterDelegate;
  using platform::Updater;

  tell([](Delegate& to, Updater& updater) { to.feedURLStringForUpdater(updater); });
  if (end == "no feed") return over(planned, "The feed cannot be reached.");
  tell([](Delegate& to, Updater& updater) { to.didFinishLoadingAppcast(updater); });
  if (end == "nothing") {
    tell([](Delegate& to, Updater& updater) {
      to.updaterDidNotFindUpdate(updater, updaterError(1001, "You are up to date."));
    });
    return over(planned, "You are up to date.");
  }
  tell([item](Delegate& to, Updater& updater) { to.didFindValidUpdate(updater, item); });
  const long choice = end == "skip" ? 0 : end == "dismiss" ? 2 : end == "odd choice" ? 7 : 1;
  tell([item, choice](Delegate& to, Updater& updater) { to.userDidMakeChoice(updater, choice, item); });
  if (choice != platform::kUserUpdateChoiceInstall) return over(planned, "The user wants no update now.");
  tell([item](Delegate& to, Updater& updater) { to.willDownloadUpdate(updater, item, kArchive); });
  if (end == "download cancelled") {
    tell([](Delegate& to, Updater& updater) { to.userDidCancelDownload(updater); });
    return over(planned, "The download was cancelled.");
  }
  if (end == "download fails") {
    tell([item](Delegate& to, Updater& updater) {
      to.failedToDownloadUpdate(updater, item, updaterError(2001, "The network is gone."));
    });
    return over(planned, "The network is gone.");
  }
  tell([item](Delegate& to, Updater& updater) { to.didDownloadUpdate(updater, item); });
  tell([item](Delegate& to, Updater& updater) { to.willExtractUpdate(updater, item); });
  if (end == "unpacking fails") return over(planned, "The archive is damaged.");
  tell([item](Delegate& to, Updater& updater) { to.didExtractUpdate(updater, item); });
  tell([item](Delegate& to, Updater& updater) { to.willInstallUpdate(updater, item); });
  step(planned, [this] {
    const bool relaunches = delegate_->updaterShouldRelaunchApplication(*updater_);
    world_.note("updater", relaunches ? "was told to relaunch" : "installs once the launcher has ended");
  });
}

}  // namespace karno::simulation
