#include "services.h"

#include <cstdlib>
#include <mutex>
#include <string>

#include "disk_services.h"
#include "process_services.h"

namespace karno::simulation {
namespace {

class SimulatedDispatch final : public platform::Dispatch {
 public:
  explicit SimulatedDispatch(World& world)
      : world_(world),
        dispatch_(world.machine.dispatch),
        mainQueue_(world, dispatch_.mainQueue()),
        mainOperationQueue_(world, dispatch_.mainOperationQueue()) {}

  platform::Queue& mainQueue() override { return mainQueue_; }
  platform::Queue& mainOperationQueue() override { return mainOperationQueue_; }
  platform::Queue& mainEvents() override { return dispatch_.mainEvents(); }
  platform::Queue& globalQueue(platform::QueuePriority priority) override {
    world_.call("Dispatch::globalQueue");
    return dispatch_.globalQueue(priority);
  }
  std::shared_ptr<platform::Queue> makeSerialQueue(std::string label) override {
    return dispatch_.makeSerialQueue(std::move(label));
  }
  std::shared_ptr<platform::DispatchGroup> makeGroup() override { return dispatch_.makeGroup(); }
  void sleep(double seconds) override {
    world_.call("Dispatch::sleep");
    dispatch_.sleep(seconds);
  }
  std::shared_ptr<void> beginActivity(const std::string& reason) override {
    return dispatch_.beginActivity(reason);
  }
  bool isMainThread() const override { return dispatch_.isMainThread(); }

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

  World& world_;
  test::FakeDispatch& dispatch_;
  MainQueue mainQueue_;
  MainQueue mainOperationQueue_;
};

class SimulatedConsole final : public Of<platform::ConsoleLog> {
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

class SimulatedAlerts final : public Of<platform::Alerts> {
 public:
  using Of::Of;

  long runModal(const platform::Alert& alert) override {
    world_.call("Alerts::runModal");
    return world_.answerAlert(alert);
  }
};

class SimulatedApplication final : public Of<platform::Application> {
 public:
  explicit SimulatedApplication(World& world) : Of(world), application_(world.machine.application) {}
  bool isActive() const override { return application_.isActive(); }
  void activateIgnoringOtherApps() override {
    world_.call("Application::activate");
    application_.activateIgnoringOtherApps();
  }
  void setActivationPolicy(platform::ActivationPolicy policy) override {
    world_.call("Application::setActivationPolicy");
    application_.setActivationPolicy(policy);
  }
  void requestUserAttention(platform::AttentionRequest request) override {
    application_.requestUserAttention(request);
  }
  void terminate() override { world_.terminate(); }

 private:
  test::FakeApplication& application_;
};

}  // namespace

struct Services::All {
  explicit All(World& ofServices) : world(ofServices) {}

  World& world;
  SimulatedApplication application{world};
  SimulatedAlerts alerts{world};
  SimulatedWorkspace workspace{world};
  SimulatedDispatch dispatch{world};
  SimulatedTasks tasks{world};
  SimulatedProcesses processes{world};
  SimulatedBundles bundles{world};
  SimulatedDefaultsStore defaults{world};
  SimulatedManagedPreferences managed{world};
  SimulatedFiles files{world};
  SimulatedConsole console{world};
  SimulatedShell shell{world};
  SimulatedNetwork network{world};
  SimulatedFileManager fileManager{world};
  SimulatedMounts mounts{world};
  SimulatedCommands commands{world};
  SimulatedAppleScripts scripts{world};
  SimulatedAuthorisations authorisations{world};
  platform::Platform platform{.application = application,
                              .alerts = alerts,
                              .windows = world.machine.windows,
                              .workspace = workspace,
                              .dispatch = dispatch,
                              .clock = world.machine.clock,
                              .tasks = tasks,
                              .processes = processes,
                              .bundles = bundles,
                              .userDefaults = defaults,
                              .managedPreferences = managed,
                              .distributedNotifications = world.machine.notifications,
                              .files = files,
                              .text = world.machine.text,
                              .consoleLog = console,
                              .systemVersion = world.machine.systemVersion,
                              .updaters = world.updater,
                              .shell = shell,
                              .urlLoading = network,
                              .identifiers = world.machine.identifiers,
                              .processList = world.machine.processList,
                              .fileReading = world.machine.fileReading,
                              .fileManager = fileManager,
                              .standardFolders = world.machine.standardFolders,
                              .mounts = mounts,
                              .commands = commands,
                              .appleScripts = scripts,
                              .authorisations = authorisations,
                              .notices = world.machine.notices};
};

Services::Services(World& world) : all_(std::make_unique<All>(world)) {}

Services::~Services() = default;

platform::Platform& Services::platform() { return all_->platform; }

}  // namespace karno::simulation
