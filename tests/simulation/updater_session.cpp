#include "updater_session.h"

#include <fmt/format.h>

#include "fake_update_services.h"
#include "platform/linux/updater/feed/appcast.h"
#include "platform/linux/updater/linux_updater.h"
#include "world.h"

namespace karno::simulation {
namespace {

constexpr double kForeverSeconds = 1e9;
constexpr const char* kFeed =
    R"(<rss xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>
<title>Karno {0}</title><sparkle:version>{0}</sparkle:version>
<enclosure url="{1}" length="7" sparkle:edSignature="sig"/></item></channel></rss>)";
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
    return session_.inSession_;
  }
  bool canCheckForUpdates() const override {
    session_.world_.call("Updater::canCheckForUpdates");
    return session_.canCheck && !session_.inSession_;
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

// The updater of Linux, whose feed, downloads and answers are those of the session that is planned.
class UpdaterSession::Linux {
 public:
  explicit Linux(UpdaterSession& session) : session_(session), machine_(session.world_.machine) {
    machine_.bundles.main().info = {{"CFBundleIdentifier", "it.vantul.KarnoWrapper"},
                                    {"CFBundleName", "Karno"},
                                    {"CFBundleVersion", "1.0"},
                                    {"CFBundleShortVersionString", "3.2.1"},
                                    {"SUEnableAutomaticChecks", false},
                                    {"SUPublicEDKey", "hPsf8t1ewC+uyWVduIlnvE1phVi04JyHv3xRg7kyhpU="}};
    machine_.scheduler.addThread("user of the updater", [this] { answer(); });
  }

  std::unique_ptr<platform::Updater> make(platform::UpdaterDelegate& delegate) {
    return std::make_unique<platform::updates::LinuxUpdater>(
        delegate,
        platform::updates::UpdateServices{
            .downloads = downloads_,
            .installer = installer_,
            .folders = folders_,
            .settings = settings_,
            .offerWindows = offers_,
            .fetchFeed = [this](const auto&, const auto&) { return fetchFeed(); },
            .readFeed = [](std::string_view bytes) { return platform::updates::parseAppcast(bytes); },
            .languages = [] { return std::vector<std::string>(); }});
  }

 private:
  platform::Result<std::string> fetchFeed() {
    session_.world_.call("Updater::fetchFeed");
    if (!session_.requested_.empty()) {
      end_ = session_.requested_.front().end;
      session_.requested_.pop_front();
    }
    session_.world_.note("updater", "of Linux, a session that ends with: " + end_);
    const platform::Error failure = updaterError(2001, "The network is gone.");
    downloads_.failure = end_ == "download fails" ? std::optional(failure) : std::nullopt;
    installer_.failure = end_ == "unpacking fails" ? std::optional(failure) : std::nullopt;
    if (end_ == "no feed") return failure;
    const std::string version = end_ == "nothing" ? "0.9" : "9.9";
    return fmt::format(kFeed, version, kArchive);
  }

  // Looks at the screen twice a second.
  void answer() {
    for (;; machine_.scheduler.sleep(0.5)) {
      if (offers_.isUp) {
        const long choice = end_ == "skip" ? 0 : end_ == "dismiss" || end_ == "odd choice" ? 2 : 1;
        machine_.scheduler.addToMain(test::MainLane::Events, [this, choice] {
          if (offers_.isUp) offers_.answer(choice);
        });
      } else if (end_ == "download cancelled" && downloads_.requests.size() > cancelled_) {
        ++cancelled_;
        machine_.scheduler.addToMain(test::MainLane::Events, [this] {
          if (!machine_.windows.progress.empty()) machine_.windows.progress.back()->cancelButton.press();
        });
      }
    }
  }

  UpdaterSession& session_;
  test::FakePlatform& machine_;
  std::string end_ = "nothing";
  std::size_t cancelled_ = 0;
  test::FakeDownloads downloads_{machine_};
  test::FakeInstaller installer_{machine_};
  test::FakeUpdateFolders folders_{machine_};
  test::FakeUpdateSettings settings_{machine_};
  test::FakeOfferWindows offers_{machine_};
};

UpdaterSession::UpdaterSession(World& world) : world_(world) {}

UpdaterSession::~UpdaterSession() = default;

bool UpdaterSession::isAtWork() const {
  return isOfLinux ? updater_ != nullptr && updater_->sessionInProgress() : inSession_;
}

std::unique_ptr<platform::Updater> UpdaterSession::makeUpdater(platform::UpdaterDelegate& delegate) {
  if (isOfLinux) {
    linux_ = std::make_unique<Linux>(*this);
    auto updater = linux_->make(delegate);
    updater_ = updater.get();
    return updater;
  }
  auto handle = std::make_unique<Handle>(*this);
  delegate_ = &delegate;
  updater_ = handle.get();
  return handle;
}

void UpdaterSession::beginScheduled(const std::string& end, double pauseSeconds) {
  if (isOfLinux) {
    if (updater_ == nullptr) return;
    requested_.push_front({end, pauseSeconds});
    world_.machine.scheduler.addToMain(test::MainLane::Events, [this] { updater_->checkForUpdates(); });
    return;
  }
  if (isStarted_) begin({end, pauseSeconds});
}

void UpdaterSession::begin(const Planned& planned) {
  if (inSession_ || !canCheck) return;
  inSession_ = true;
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
  inSession_ = false;
  world_.note("updater", "over");
}

void UpdaterSession::live(const Planned& planned) {
  const auto& end = planned.end;
  const platform::AppcastItem item{.title = "Karno 9.9", .displayVersionString = "9.9"};
  const auto tell = [&](auto stage, const auto&... what) {
    step(planned, [=, this] { (delegate_->*stage)(*updater_, what...); });
  };
  using To = platform::UpdaterDelegate;

  tell(&To::feedURLStringForUpdater);
  if (end == "no feed") return over(planned, "The feed cannot be reached.");
  tell(&To::didFinishLoadingAppcast);
  if (end == "nothing") {
    tell(&To::updaterDidNotFindUpdate, updaterError(1001, "You are up to date."));
    return over(planned, "You are up to date.");
  }
  tell(&To::didFindValidUpdate, item);
  const long choice = end == "skip" ? 0 : end == "dismiss" ? 2 : end == "odd choice" ? 7 : 1;
  tell(&To::userDidMakeChoice, choice, item);
  if (choice != platform::kUserUpdateChoiceInstall) return over(planned, "The user wants no update now.");
  tell(&To::willDownloadUpdate, item, kArchive);
  if (end == "download cancelled") {
    tell(&To::userDidCancelDownload);
    return over(planned, "The download was cancelled.");
  }
  if (end == "download fails") {
    tell(&To::failedToDownloadUpdate, item, updaterError(2001, "The network is gone."));
    return over(planned, "The network is gone.");
  }
  tell(&To::didDownloadUpdate, item);
  tell(&To::willExtractUpdate, item);
  if (end == "unpacking fails") return over(planned, "The archive is damaged.");
  tell(&To::didExtractUpdate, item);
  tell(&To::willInstallUpdate, item);
  step(planned, [this] {
    const bool relaunches = delegate_->updaterShouldRelaunchApplication(*updater_);
    world_.note("updater", relaunches ? "was told to relaunch" : "installs once the launcher has ended");
  });
}

}  // namespace karno::simulation
