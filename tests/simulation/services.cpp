#include <cstdlib>
#include <mutex>
#include <string>

#include "disk_services.h"
#include "process_services.h"

namespace karno::simulation {
namespace {

class SimulatedDispatch final : public Of<platform::Dispatch, &Fakes::dispatch> {
 public:
  using Of::Of;

  platform::Queue& mainQueue() override { return mainQueue_; }
  platform::Queue& mainOperationQueue() override { return mainOperationQueue_; }
  platform::Queue& mainEvents() override { return fake_.mainEvents(); }
  platform::Queue& globalQueue(platform::QueuePriority priority) override {
    world_.call("Dispatch::globalQueue");
    return fake_.globalQueue(priority);
  }
  std::shared_ptr<platform::Queue> makeSerialQueue(std::string label) override {
    return fake_.makeSerialQueue(std::move(label));
  }
  std::shared_ptr<platform::DispatchGroup> makeGroup() override { return fake_.makeGroup(); }
  void sleep(double seconds) override {
    world_.call("Dispatch::sleep");
    fake_.sleep(seconds);
  }
  std::shared_ptr<void> beginActivity(const std::string& reason) override {
    return fake_.beginActivity(reason);
  }
  bool isMainThread() const override { return fake_.isMainThread(); }

 private:
  // Notes how long each block takes.
  class MainQueue final : public platform::Queue {
   public:
    MainQueue(World& world, platform::Queue& queue) : world_(world), queue_(queue) {}
    void async(platform::Block block) override {
      world_.call("Queue::async");
      if (world_.isSabotaged("wrong thread")) return block();
      queue_.async([&world = world_, run = std::move(block)] {
        world.note("main begins", "");
        if (world.isSabotaged("main sleeps")) world.machine.scheduler.sleep(16);
        run();
        world.note("main ends", "");
      });
    }

   private:
    World& world_;
    platform::Queue& queue_;
  };

  MainQueue mainQueue_{world_, fake_.mainQueue()};
  MainQueue mainOperationQueue_{world_, fake_.mainOperationQueue()};
};

class SimulatedConsole final : public Of<platform::ConsoleLog, &Fakes::consoleLog> {
 public:
  using Of::Of;

  void log(std::string_view line) override {
    world_.note("line", std::string(line));
    world_.call("ConsoleLog::log");
    if (world_.isSabotaged("crash")) std::abort();
    if (world_.isSabotaged("deadlock")) lockBoth();
    if (world_.isSabotaged("odd line") && line.find("Main: System is okay") != std::string_view::npos)
      world_.note("line", std::string(line) + " indeed");
  }

 private:
  void lockBoth() {
    const bool isMain = world_.machine.scheduler.isMainThread();
    const std::scoped_lock first(isMain ? one_ : other_);
    world_.machine.scheduler.sleep(1);
    const std::scoped_lock second(isMain ? other_ : one_);
  }

  std::mutex one_;
  std::mutex other_;
};

class SimulatedAlerts final : public Of<platform::Alerts, &Fakes::alerts> {
 public:
  using Of::Of;

  long runModal(const platform::Alert& alert) override {
    world_.call("Alerts::runModal");
    return world_.answerAlert(alert);
  }
};

class SimulatedApplication final : public Of<platform::Application, &Fakes::application> {
 public:
  using Of::Of;

  bool isActive() const override { return fake_.isActive(); }
  void activateIgnoringOtherApps() override {
    world_.call("Application::activate");
    fake_.activateIgnoringOtherApps();
  }
  void setActivationPolicy(platform::ActivationPolicy policy) override {
    world_.call("Application::setActivationPolicy");
    fake_.setActivationPolicy(policy);
  }
  void requestUserAttention(platform::AttentionRequest request) override {
    fake_.requestUserAttention(request);
  }
  void terminate() override { world_.terminate(); }
};

// For as long as the process lives, as its one life does.
template <class Service>
Service& kept(World& world) {
  static Service service(world);
  return service;
}

}  // namespace

void installServices(World& world) {
  Fakes& fakes = world.machine;
  static platform::Platform platform{.application = kept<SimulatedApplication>(world),
                                     .alerts = kept<SimulatedAlerts>(world),
                                     .windows = fakes.windows,
                                     .workspace = kept<SimulatedWorkspace>(world),
                                     .dispatch = kept<SimulatedDispatch>(world),
                                     .clock = fakes.clock,
                                     .tasks = kept<SimulatedTasks>(world),
                                     .processes = kept<SimulatedProcesses>(world),
                                     .bundles = kept<SimulatedBundles>(world),
                                     .userDefaults = kept<SimulatedDefaultsStore>(world),
                                     .managedPreferences = kept<SimulatedManagedPreferences>(world),
                                     .distributedNotifications = fakes.notifications,
                                     .files = kept<SimulatedFiles>(world),
                                     .text = fakes.text,
                                     .consoleLog = kept<SimulatedConsole>(world),
                                     .systemVersion = fakes.systemVersion,
                                     .updaters = world.updater,
                                     .shell = kept<SimulatedShell>(world),
                                     .urlLoading = kept<SimulatedNetwork>(world),
                                     .identifiers = fakes.identifiers,
                                     .processList = fakes.processList,
                                     .fileReading = fakes.fileReading,
                                     .fileManager = kept<SimulatedFileManager>(world),
                                     .standardFolders = fakes.standardFolders,
                                     .mounts = kept<SimulatedMounts>(world),
                                     .commands = kept<SimulatedCommands>(world),
                                     .appleScripts = kept<SimulatedAppleScripts>(world),
                                     .authorisations = kept<SimulatedAuthorisations>(world),
                                     .notices = fakes.notices};
  platform::install(platform);
}

}  // namespace karno::simulation
