#include "services.h"

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

#include "world.h"

namespace karno::simulation {
namespace {

using platform::Error;
using platform::Result;
using How = Fault::How;

constexpr const char* kOpen = "/usr/bin/open";
constexpr const char* kGarbage = "ProductName: a: b\n\xff nonsense";

// A service with the world in front of it.
template <class Port>
class Of : public Port {
 public:
  explicit Of(World& world) : world_(world) {}

 protected:
  World& world_;
};

class SimulatedStream final : public platform::AppendStream {
 public:
  SimulatedStream(World& world, std::string path, std::unique_ptr<platform::AppendStream> stream)
      : world_(world), path_(std::move(path)), stream_(std::move(stream)) {}

  void writeLine(std::string_view line) override {
    const Fault* const fault = world_.call("Files::writeLine");
    if (fault == nullptr) {
      if (world_.isSabotaged("lost line") && line.find("Main: Started") != std::string_view::npos) return;
      stream_->writeLine(line);
    } else if (fault->how == How::Half && world_.machine.files.fileExists(path_)) {
      world_.machine.files.overwrite(path_,
                                     world_.machine.files.text(path_) + std::string(line.substr(0, 30)));
    }
  }
  void flush() override { stream_->flush(); }

 private:
  World& world_;
  const std::string path_;
  std::unique_ptr<platform::AppendStream> stream_;
};

class SimulatedFiles final : public Of<platform::Files> {
 public:
  explicit SimulatedFiles(World& world) : Of(world), files_(world.machine.files) {}

  std::vector<std::string> searchPath(platform::UserFolder folder) const override {
    return files_.searchPath(folder);
  }
  std::string homeDirectory() const override { return files_.homeDirectory(); }
  std::vector<std::string> localLibraryFolders() const override { return files_.localLibraryFolders(); }
  bool fileExists(const std::string& path) const override {
    world_.call("Files::fileExists");
    return files_.fileExists(path);
  }
  std::optional<std::uint64_t> sizeInBytes(const std::string& path) const override {
    world_.call("Files::sizeInBytes");
    return files_.sizeInBytes(path);
  }
  Result<std::string> read(const std::string& path) const override {
    const Fault* const fault = world_.call("Files::read");
    if (fault == nullptr) return files_.read(path);
    if (fault->how == How::Odd) return std::string(kGarbage);
    return Error::posix(fault->number);
  }
  Result<std::string> destinationOfSymbolicLink(const std::string& path) const override {
    return files_.destinationOfSymbolicLink(path);
  }
  std::optional<Error> createFile(const std::string& path) override {
    return unlessFaulty("Files::createFile", [&] { return files_.createFile(path); });
  }
  std::optional<Error> createDirectory(const std::string& path) override {
    return unlessFaulty("Files::createDirectory", [&] { return files_.createDirectory(path); });
  }
  std::optional<Error> move(const std::string& from, const std::string& to) override {
    return unlessFaulty("Files::move", [&] {
      auto error = files_.move(from, to);
      if (!error && from == test::kLogFile) ++world_.record.rotations;
      return error;
    });
  }

  // Of a folder one item after the other goes.
  std::optional<Error> remove(const std::string& path) override {
    return unlessFaulty("Files::remove", [&] {
      world_.note("remove", path);
      std::vector<std::string> items;
      if (files_.isFolder(path) && !files_.destinationOfSymbolicLink(path))
        files_.enumerate(path, [&](const platform::DirectoryEntry& entry) {
          items.push_back(path + "/" + entry.relativePath);
          return true;
        });
      for (; !items.empty(); items.pop_back()) {
        if (const auto error = unlessFaulty("Files::remove", [&] { return files_.remove(items.back()); }))
          return error;
      }
      return files_.remove(path);
    });
  }
  void enumerate(const std::string& folder, const Visitor& visit) const override {
    world_.call("Files::enumerate");
    files_.enumerate(folder, visit);
  }
  std::unique_ptr<platform::AppendStream> openForAppending(const std::string& path) override {
    if (world_.call("Files::openForAppending") != nullptr) return nullptr;
    auto stream = files_.openForAppending(path);
    return stream ? std::make_unique<SimulatedStream>(world_, path, std::move(stream)) : nullptr;
  }

 private:
  template <class Operation>
  std::optional<Error> unlessFaulty(const char* name, const Operation& operation) {
    if (const Fault* const fault = world_.call(name)) return Error::posix(fault->number);
    return operation();
  }

  test::FakeFiles& files_;
};

// Whole copies appear at once, and what is copied lies beside them before.
class SimulatedFileManager final : public Of<platform::FileManager> {
 public:
  explicit SimulatedFileManager(World& world) : Of(world), manager_(world.machine.fileManager) {}

  bool isWritable(const std::string& path) const override {
    const Fault* const fault = world_.call("FileManager::isWritable");
    return manager_.isWritable(path) != (fault != nullptr);
  }
  bool isSameItem(const std::string& path, const std::string& other) const override {
    return manager_.isSameItem(path, other);
  }
  std::string resolvingSymbolicLinks(const std::string& path) const override {
    return manager_.resolvingSymbolicLinks(path);
  }
  std::string standardising(const std::string& path) const override { return manager_.standardising(path); }

  std::optional<Error> copyItem(const std::string& from, const std::string& to) override {
    const Fault* const fault = world_.call("FileManager::copyItem");
    world_.note("copy", from + " to " + to);
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    test::FakeFiles& files = world_.machine.files;
    const std::string beside = to + ".copying";
    files.remove(beside);
    int copied = 0;
    const auto hindrance = [&](const std::string&) -> std::optional<Error> {
      world_.call("FileManager::copyItem step");
      if (fault != nullptr && ++copied == 3) return Error::posix(fault->number);
      return std::nullopt;
    };
    if (const auto error =
            manager_.isSameItem(from, to) ? Error::posix(EEXIST) : files.copy(from, beside, hindrance))
      return error;
    if (files.isThere(to)) return Error::posix(EEXIST);
    return files.move(beside, to);
  }
  std::optional<Error> trashItem(const std::string& path) override {
    if (world_.isSabotaged("no bundle")) {
      world_.machine.files.remove(world_.machine.bundles.main().bundlePath());
      world_.machine.files.remove(path);
    }
    world_.note("trash", path);
    if (const Fault* const fault = world_.call("FileManager::trashItem")) return Error::posix(fault->number);
    return manager_.trashItem(path);
  }

 private:
  test::FakeFileManager& manager_;
};

class SimulatedDefaults final : public platform::UserDefaults {
 public:
  SimulatedDefaults(World& world, std::string suite, std::unique_ptr<platform::UserDefaults> owned,
                    platform::UserDefaults& defaults)
      : world_(world), suite_(std::move(suite)), owned_(std::move(owned)), defaults_(defaults) {}

  std::optional<platform::Value> objectForKey(std::string_view key) const override {
    if (world_.call("UserDefaults::objectForKey") != nullptr)
      return platform::Value(platform::Value::Array{});
    return defaults_.objectForKey(key);
  }
  bool boolForKey(std::string_view key) const override {
    return defaults_.boolForKey(key) != (world_.call("UserDefaults::boolForKey") != nullptr);
  }
  void setBool(bool value, std::string_view key) override {
    if (world_.call("UserDefaults::setBool") != nullptr) return;
    world_.wrote(suite_, world_.isSabotaged("odd setting") ? "isFirstStartup" : key, value);
    defaults_.setBool(value, key);
  }
  void synchronize() override {
    world_.call("UserDefaults::synchronize");
    defaults_.synchronize();
  }

 private:
  World& world_;
  const std::string suite_;
  std::unique_ptr<platform::UserDefaults> owned_;
  platform::UserDefaults& defaults_;
};

class SimulatedDefaultsStore final : public platform::UserDefaultsStore {
 public:
  explicit SimulatedDefaultsStore(World& world)
      : world_(world),
        standard_(world, "standard", nullptr, world.machine.userDefaults.standardUserDefaults()) {}

  platform::UserDefaults& standardUserDefaults() override { return standard_; }
  std::unique_ptr<platform::UserDefaults> makeSuite(const std::string& name) override {
    auto suite = world_.machine.userDefaults.makeSuite(name);
    platform::UserDefaults& defaults = *suite;
    return std::make_unique<SimulatedDefaults>(world_, name, std::move(suite), defaults);
  }

 private:
  World& world_;
  SimulatedDefaults standard_;
};

class SimulatedManagedPreferences final : public Of<platform::ManagedPreferences> {
 public:
  using Of::Of;

  std::optional<platform::Value> copyAppValue(const std::string& key,
                                              const std::string& application) override {
    const Fault* const fault = world_.call("ManagedPreferences::copyAppValue");
    if (fault == nullptr) return world_.machine.managedPreferences.copyAppValue(key, application);
    return fault->how == How::Odd ? std::optional(platform::Value(true)) : std::nullopt;
  }
  bool isAppValueForced(const std::string& key, const std::string& application) override {
    return world_.machine.managedPreferences.isAppValueForced(key, application);
  }
};

class SimulatedTasks final : public Of<platform::Tasks> {
 public:
  using Of::Of;

  Result<std::int32_t> launch(const platform::TaskLaunch& task, TerminationHandler onTermination) override {
    if (const Fault* const fault = world_.call("Tasks::launch")) return Error::posix(fault->number);
    const auto tell = [&world = world_, handler = std::move(onTermination)](const platform::TaskEnd& end) {
      world.call("Tasks::termination");
      if (handler && !world.isSabotaged("end not told")) handler(end);
    };
    const auto child = world_.machine.tasks.launch(task, tell);
    if (!child) return child;
    world_.clientLaunched(task.executablePath, child.value());
    if (world_.isSabotaged("two clients") && task.executablePath != kOpen)
      world_.clientLaunched(task.executablePath, world_.machine.tasks.launch(task, tell).value());
    const auto& words = task.arguments;
    if (task.executablePath == kOpen && words.size() == 5) world_.opensAnew(words[1], {words[3], words[4]});
    return child;
  }
};

class SimulatedProcesses final : public Of<platform::Processes> {
 public:
  explicit SimulatedProcesses(World& world) : Of(world), processes_(world.machine.processes) {}

  std::int32_t currentProcessIdentifier() const override { return processes_.currentProcessIdentifier(); }
  std::int32_t parentProcessIdentifier() const override { return processes_.parentProcessIdentifier(); }
  std::vector<std::string> arguments() const override { return processes_.arguments(); }
  std::string name(std::int32_t process) const override {
    return world_.call("Processes::name") != nullptr ? "" : processes_.name(process);
  }
  int terminate(std::int32_t process) override {
    const Fault* const fault = world_.call("Processes::terminate");
    return fault != nullptr ? fault->number : processes_.terminate(process);
  }
  platform::WaitResult waitForChild(std::int32_t process) override {
    const Fault* const fault = world_.call("Processes::waitForChild");
    return fault != nullptr ? platform::WaitResult{.result = -1, .error = fault->number}
                            : processes_.waitForChild(process);
  }

 private:
  test::FakeProcesses& processes_;
};

class SimulatedPipe final : public platform::ShellPipe {
 public:
  SimulatedPipe(World& world, std::unique_ptr<platform::ShellPipe> pipe, bool isOdd)
      : world_(world), pipe_(std::move(pipe)), isOdd_(isOdd) {}
  std::optional<std::string> readPiece() override {
    world_.call("Shell::read");
    if (!isOdd_) return pipe_->readPiece();
    isOdd_ = false;
    return std::string(kGarbage);
  }
  bool close() override {
    const bool isFaulty = world_.call("Shell::close") != nullptr;
    return pipe_->close() && !isFaulty;
  }

 private:
  World& world_;
  std::unique_ptr<platform::ShellPipe> pipe_;
  bool isOdd_;
};

class SimulatedShell final : public Of<platform::Shell> {
 public:
  using Of::Of;

  Result<std::unique_ptr<platform::ShellPipe>> open(const std::string& line) override {
    const Fault* const fault = world_.call("Shell::open");
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    auto pipe = world_.machine.shell.open(line);
    if (!pipe) return pipe;
    return std::unique_ptr<platform::ShellPipe>(
        std::make_unique<SimulatedPipe>(world_, std::move(pipe.value()), fault != nullptr));
  }
};

class SimulatedCommands final : public Of<platform::Commands> {
 public:
  using Of::Of;

  Result<platform::CommandEnd> run(const platform::TaskLaunch& command) override {
    const Fault* const fault = world_.call("Commands::run");
    if (fault == nullptr) {
      if (command.executablePath == kOpen && command.arguments.size() == 1)
        world_.note("open", command.arguments.front());
      return world_.machine.commands.run(command);
    }
    if (fault->how == How::Fails) return Error::posix(fault->number);
    return platform::CommandEnd{.end = {.terminationStatus = 1}, .standardOutput = kGarbage};
  }
  std::optional<Error> start(const platform::TaskLaunch& command) override {
    if (const Fault* const fault = world_.call("Commands::start")) return Error::posix(fault->number);
    const auto error = world_.machine.commands.start(command);
    const std::string script = command.arguments.empty() ? "" : command.arguments.back();
    if (!error && script.find("/usr/bin/open") != std::string::npos) world_.opensAnew(kInstalledBundle, {});
    return error;
  }
};

class SimulatedNetwork final : public Of<platform::URLLoading> {
 public:
  using Of::Of;

  Result<std::string> contentsOfURL(const std::string& url) override {
    const Fault* const fault = world_.call("URLLoading::contentsOfURL");
    if (fault == nullptr) return world_.machine.network.contentsOfURL(url);
    if (fault->how == How::Odd) return std::string(R"({"name": 7, "tag_name": [)");
    return Error("NSURLErrorDomain", -1009, {{"NSLocalizedDescription", "The computer is offline."}});
  }
};

// The administrator's commands do to the disk what they say.
class SimulatedAuthorisation final : public platform::Authorisation {
 public:
  SimulatedAuthorisation(World& world, std::unique_ptr<platform::Authorisation> given)
      : world_(world), given_(std::move(given)) {}

  platform::RightAnswer copyRight(const std::string& right, std::uint32_t flags) override {
    const Fault* const fault = world_.call("Authorisation::copyRight");
    if (fault == nullptr) return given_->copyRight(right, flags);
    return fault->how == How::Odd ? platform::RightAnswer::Cancelled : platform::RightAnswer::Refused;
  }
  bool canExecuteWithPrivileges() override {
    return world_.call("Authorisation::canExecuteWithPrivileges") == nullptr;
  }
  Result<platform::TaskEnd> executeWithPrivileges(const platform::TaskLaunch& command) override {
    const Fault* const fault = world_.call("Authorisation::executeWithPrivileges");
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    test::FakeFiles& files = world_.machine.files;
    const std::set<std::string> readOnly = std::exchange(files.readOnly, {});
    std::optional<Error> error;
    if (command.executablePath == "/bin/rm") {
      files.remove(command.arguments.back());
    } else {
      int copied = 0;
      error = files.copy(
          command.arguments[1], command.arguments[2], [&](const std::string&) -> std::optional<Error> {
            world_.call("Authorisation::execute step");
            return fault != nullptr && ++copied == 2 ? std::optional(Error::posix(ENOSPC)) : std::nullopt;
          });
    }
    files.readOnly = readOnly;
    return platform::TaskEnd{.terminationStatus = error || fault != nullptr ? 1 : 0};
  }

 private:
  World& world_;
  std::unique_ptr<platform::Authorisation> given_;
};

class SimulatedAuthorisations final : public Of<platform::Authorisations> {
 public:
  using Of::Of;

  std::unique_ptr<platform::Authorisation> create() override {
    if (world_.call("Authorisations::create") != nullptr) return nullptr;
    return std::make_unique<SimulatedAuthorisation>(world_, world_.machine.authorisations.create());
  }
};

// The one script that there is moves a file to the Trash.
class SimulatedAppleScripts final : public Of<platform::AppleScripts> {
 public:
  using Of::Of;

  std::optional<std::string> execute(const std::string& source) override {
    if (world_.call("AppleScripts::execute") != nullptr) return "The Finder does not answer.";
    const std::size_t begin = source.find('"') + 1;
    const auto error =
        world_.machine.fileManager.trashItem(source.substr(begin, source.find('"', begin) - begin));
    return error ? std::optional(error->description()) : world_.machine.appleScripts.execute(source);
  }
};

class SimulatedMounts final : public Of<platform::Mounts> {
 public:
  using Of::Of;

  std::optional<platform::MountInformation> informationOf(const std::string& path) const override {
    return world_.call("Mounts::informationOf") != nullptr ? std::nullopt
                                                           : world_.machine.mounts.informationOf(path);
  }
};

class SimulatedWorkspace final : public Of<platform::Workspace> {
 public:
  explicit SimulatedWorkspace(World& world) : Of(world), workspace_(world.machine.workspace) {}

  void selectFile(const std::string& path, const std::string& root) override {
    workspace_.selectFile(path, root);
  }
  void openURL(const std::string& url) override {
    world_.call("Workspace::openURL");
    world_.note("site", url);
    workspace_.openURL(url);
  }
  std::vector<platform::RunningApplication> runningApplications(const std::string& identifier) override {
    if (world_.call("Workspace::runningApplications") != nullptr) return {};
    return workspace_.runningApplications(identifier);
  }
  void activateApplication(std::int32_t process) override { workspace_.activateApplication(process); }
  std::vector<std::string> bundlePathsOfRunningApplications() override {
    world_.call("Workspace::bundlePathsOfRunningApplications");
    return workspace_.bundlePathsOfRunningApplications();
  }

 private:
  test::FakeWorkspace& workspace_;
};

class SimulatedBundles final : public Of<platform::Bundles> {
 public:
  using Of::Of;

  const platform::Bundle& mainBundle() const override { return world_.machine.bundles.mainBundle(); }
  std::shared_ptr<const platform::Bundle> bundleAtPath(const std::string& path) const override {
    return world_.call("Bundles::bundleAtPath") != nullptr ? nullptr
                                                           : world_.machine.bundles.bundleAtPath(path);
  }
};

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
