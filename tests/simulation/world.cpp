#include "world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "app/progress_window_controller.h"
#include "app/startup_manager.h"
#include "interposition.h"
#include "launcher.h"
#include "move/karno_move_application_manager.h"
#include "services.h"

namespace karno::simulation {
namespace {

using test::FakeProcessTable;
using test::MainLane;

constexpr double kFirstSecond = 1e-9;
constexpr double kExitSeconds = 0.25;  // from the end of the main loop to that of the process
constexpr double kForeverSeconds = 1e9;
constexpr double kUsualAnswerSeconds = 1;
constexpr const char* kSuite = "it.vantul.karno";
constexpr std::int32_t kOtherLauncher = 9001;
constexpr std::int32_t kOtherClient = 9002;
constexpr const char* kHelpers = "/Contents/Helpers/";
constexpr const char* kExecutable = "/Contents/MacOS/Karno";
constexpr const char* kResource = "/Contents/Resources/Base.lproj/Strings.json";
constexpr const char* kTouchFile = "/Users/tester/Library/Caches/Karno/cache.noindex/.karnoUpdated";
constexpr const char* kMarkerFile = "/Users/tester/KARNOUPGRADE.debug";
constexpr const char* kTrash = "/Users/tester/.Trash";
constexpr const char* kReleaseURL = "https://api.github.com/repos/macfuse/macfuse/releases/latest";
constexpr const char* kStrings =
    R"({"OK": "OK", "YES": "Yes", "NO": "No", "CANCEL": "Cancel", "CONTINUE": "Continue",
 "WHOOPS": "Whoops", "ERROR_FATAL": "It crashed.", "NOT_NOW": "Not now", "UPDATE": "Update",
 "DRIVE_MOUNT_FAILED": "No drive.", "WHAT_WOULD_YOU_LIKE_TO_DO": "What now?",
 "MESSAGE_FUSE_INSTALL": "Install it.", "MESSAGE_FUSE_INSTALL_REQUIRED": "macFUSE is needed.",
 "MESSAGE_FUSE_UPGRADE_REQUIRED": "A newer macFUSE is needed.",
 "MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE": "Go on to the site."})";

// Of the builds of the client, by the names of their bundles.
std::string programIn(const std::string& launcher, const std::string& build) {
  return launcher + kHelpers + build + "/Contents/MacOS/" + build.substr(0, build.rfind('.'));
}

platform::Value typed(const std::string& text) {
  if (text == "<true/>") return true;
  return text;
}

// What belongs to the interface of the launcher's classes and nothing in it calls.
void useInterface(test::FakePlatform& machine, const std::string& what) {
  StartupManager& manager = StartupManager::instance();
  if (what == "asks again") {
    manager.continueAfterManualInstall();
  } else if (what == "cancels progress") {
    const auto controller = ProgressWindowController::make();
    manager.setProgressController(controller);
    controller->setMessage("Waiting");
    controller->showWindow();
    manager.progressWindowControllerUserPressedCancel(*controller);
  } else if (what == "moves twice") {
    machine.scheduler.addThread("global(-32768)",
                                [] { KarnoMoveApplicationManager::instance().moveApplicationIfRequired(); });
  }
}

// An expectation of the fakes that failed is a thread that does what it must not.
class ThreadRules final : public testing::EmptyTestEventListener {
 public:
  explicit ThreadRules(World& world) : world_(world) {}
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) world_.note("rule", result.message());
  }

 private:
  World& world_;
};

void listenToExpectations(World& world) {
  testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
  const std::unique_ptr<testing::TestEventListener> printer(
      listeners.Release(listeners.default_result_printer()));
  listeners.Append(std::make_unique<ThreadRules>(world).release());  // owned by the list
}

}  // namespace

World::World(const Life& life, std::function<void(const LifeReport&)> tell)
    : machine(life.plan.seed * 31 + static_cast<std::uint64_t>(life.number)),
      life_(life),
      tell_(std::move(tell)) {
  listenToExpectations(*this);
  buildMachine();
  services_ = std::make_unique<Services>(*this);
  platform::install(services_->platform());
  interpose(machine.scheduler, [this](const std::string& how) { endBroken("no deadlock", how); });
}

World::~World() = default;

void World::buildMachine() {
  constexpr unsigned kYields[] = {0, 5, 20, 60};
  const auto random = [this](std::size_t limit) { return machine.scheduler.random() % limit; };
  record.latenessMax = random(3) == 0 ? 0.4 : 0;
  machine.scheduler.setUnruliness({.yieldPercent = kYields[random(4)],
                                   .latePercent = record.latenessMax > 0 ? 15U : 0U,
                                   .lateSecondsMax = record.latenessMax,
                                   .threadsMax = random(4) == 0 ? 16U : 64U});

  record.processIdentifier = FakeProcessTable::kLauncher + life_.number;
  machine.processes.current = record.processIdentifier;
  machine.bundles.main().setPath(life_.start ? life_.start->bundle : kInstalledBundle);
  machine.files.addDirectory("/Applications");
  machine.files.addDirectory(kTrash);
  machine.files.addDirectory("/Users/tester/Library/Caches/Karno/cache.noindex");
  machine.processTable.programs["/usr/bin/open"] = {.endsAtOnce = platform::TaskEnd{}};
  machine.withSystem("14.5.0", "arm64").withFuse("4.4.1").withEmbeddedBuilds();
  setRelease("4.4.1");
  if (life_.start) machine.withArguments(life_.start->arguments);

  // What is so from the very start is so in each life, unless the disk or the settings tell otherwise.
  for (const Event& event : life_.plan.events) {
    if (event.life == 0 && event.at == 0) prepare(event);
  }
  if (life_.left) restore(*life_.left);
  for (const Event& event : life_.plan.events) {
    if (event.life == life_.number && life_.number > 0 && event.at == 0) prepare(event);
  }
  const std::string bundle = machine.bundles.main().bundlePath();
  if (hasStrings_) {
    machine.bundles.main().resources["Strings.json"] = bundle + kResource;
    machine.bundles.main().resources["Base.lproj/Strings.json"] = bundle + kResource;
  }
  if (life_.number == 0) {
    machine.files.addFile(bundle + kExecutable, "this launcher");
    machine.files.addFile(bundle + kResource, kStrings);
  }
  moves_ = bundle != kInstalledBundle;
  choice_ = choice();
}

void World::prepare(const Event& event) {
  const auto& [life, at, kind, what, number] = event;
  if (kind == "fault") {
    if (auto fault = faultOf(what, number); fault && life == life_.number)
      faults_.push_back(*std::move(fault));
  } else if (kind == "crash") {
    if (life == life_.number) crashAtCall_ = static_cast<std::uint64_t>(number);
  } else if (kind == "sabotage") {
    sabotage_.insert(what);
  } else if (kind == "answer") {
    if (life == life_.number) answers_.push_back(event);
  } else if (kind == "macOS") {
    machine.withSystem(what,
                       machine.shell.outputs[test::kUnameLine].starts_with("arm64") ? "arm64" : "x86_64");
    std::array<int, 3> numbers{};
    std::sscanf(what.c_str(), "%d.%d.%d", &numbers[0], &numbers[1], &numbers[2]);
    machine.systemVersion.running = numbers;
  } else if (kind == "cpu") {
    machine.shell.outputs[test::kUnameLine] = what + "\n";
  } else if (kind == "lies at") {
    if (!life_.start) prepareMove(what);
  } else if (kind == "without build") {
    machine.bundles.removeHelper(what);
  } else if (kind == "without executable") {
    machine.bundles.addHelper(what, what == "Karno.app" ? "it.vantul.Karno" : "it.vantul.KarnoFuse", false);
  } else if (kind == "argument") {
    if (life_.start) return;
    machine.processes.commandLine.push_back(what);
  } else if (kind == "session") {
    if (life == life_.number) updater.planRequested(what, number);
  } else if (kind == "updater" && what == "of Linux") {
    updater.isOfLinux = true;
  } else if (kind == "updater" && what == "cannot start") {
    updater.canStart = false;
  } else if (kind == "post lost") {
    lostPosts_.insert(static_cast<std::uint64_t>(number));
  } else if (kind == "post doubled") {
    doubledPosts_.insert(static_cast<std::uint64_t>(number));
  } else if (kind == "client" && what == "ignores SIGTERM") {
    if (life != life_.number) return;
    for (const char* name : {"Karno.app", "Karno(Fuse).app"})
      machine.processTable.programs[programIn(machine.bundles.main().bundlePath(), name)].ignoresTermination =
          true;
  } else {
    prepareSettings(event);
  }
}

void World::prepareMove(const std::string& bundle) {
  machine.bundles.main().setPath(bundle);
  for (const std::string name : {"Karno.app", "Karno(Fuse).app"}) {
    test::FakeBundle& helper = machine.bundles.add(bundle + kHelpers + name);
    helper.info = {{"CFBundleIdentifier", name == "Karno.app" ? "it.vantul.Karno" : "it.vantul.KarnoFuse"}};
    helper.executable = name.substr(0, name.rfind('.'));
  }
}

void World::prepareSettings(const Event& event) {
  const auto& [life, at, kind, what, number] = event;
  if (kind == "fuse") {
    setFuse(what);
  } else if (kind == "release") {
    setRelease(what);
  } else if (kind == "admin") {
    setAdmin(what);
  } else if (kind == "setting") {
    machine.withUserSetting(what.substr(0, what.find('=')), platform::Value(what.ends_with("=1")));
  } else if (kind == "suppress move") {
    machine.userDefaults.standard().values.insert_or_assign("moveToApplicationsFolderAlertSuppress",
                                                            platform::Value(true));
  } else if (kind == "old copy" || kind == "old copy runs") {
    if (machine.bundles.main().bundlePath() == kInstalledBundle) return;
    machine.files.addFile(std::string(kInstalledBundle) + kExecutable, "old launcher");
    machine.files.addFile(std::string(kInstalledBundle) + kResource, kStrings);
    if (kind == "old copy runs") machine.processTable.addApplication(kInstalledBundle);
  } else if (kind == "disk image") {
    machine.mounts.mounts["/Volumes/Karno"] = platform::MountInformation{"/dev/disk4s1", false};
  } else if (kind == "no rights") {
    machine.files.readOnly.insert("/Applications");
  } else {
    prepareDisk(event);
  }
}

void World::prepareDisk(const Event& event) {
  const auto& [life, at, kind, what, number] = event;
  if (kind == "log") {
    if (life_.number == 0) machine.files.setSize(test::kLogFile, static_cast<std::uint64_t>(number));
  } else if (kind == "lumberjack") {
    machine.files.addFile(std::string(test::kLogFolder) + "/it.vantul.Karno 1.log", "old",
                          machine.clock.now() - std::chrono::seconds(static_cast<long>(number)));
  } else if (kind == "touch file") {
    machine.files.addFile(kTouchFile, "");
  } else if (kind == "no cache folder") {
    machine.files.remove("/Users/tester/Library/Caches/Karno");
  } else if (kind == "marker") {
    machine.files.addFile(kMarkerFile, what);
  } else if (kind == "no strings") {
    hasStrings_ = false;
  }
}

Choice World::choice() const {
  Choice known{.arguments = machine.processes.commandLine};
  const auto& domain =
      const_cast<test::FakePlatform&>(machine).managedPreferences.domains["it.vantul.KarnoAdmin"];
  if (const auto admin = domain.find("USE_FILE_PROVIDER"); admin != domain.end() && admin->second.isString())
    known.admin = "text " + *admin->second.get<std::string>();
  const auto& values = const_cast<test::FakePlatform&>(machine).settings().values;
  const auto setting = [&](const char* key, bool otherwise) {
    const auto found = values.find(key);
    return found == values.end() ? otherwise : *found->second.get<bool>();
  };
  known.isFirstStartup = setting("isFirstStartup", true);
  known.useFileProvider = setting("useFileProvider", false);
  known.isVerified = setting("useFileProviderVerified", false);
  return known;
}

void World::run() {
  machine.scheduler.addThread("world", [this] { livesThroughEvents(); });
  launcher_ = std::make_unique<test::Launcher>(machine);
  launcher_->finishLaunching();
  machine.runFor(kForeverSeconds);
  end(End::Running);
}

const Fault* World::call(std::string_view operation) {
  if (++calls_ == crashAtCall_) end(End::Crashed);
  if (moves_) checkWholeBundle();
  machine.scheduler.yield();
  for (Fault& fault : faults_) {
    if (fault.operation != operation || !fault.hits()) continue;
    faultsHit_.insert(fault.operation);
    note("fault", fault.operation);
    record.isDiskFaulty |= operation.starts_with("Files::") && fault.how != Fault::How::Late;
    record.areSettingsFaulty |= operation.starts_with("UserDefaults") || operation.starts_with("Managed");
    record.areProcessesFaulty |= operation.starts_with("Workspace") || operation.starts_with("Processes");
    if (fault.how != Fault::How::Late) return &fault;
    record.latenessMax = std::max<double>(record.latenessMax, fault.number);
    record.hasHangingWork |= fault.number > 1000;
    const double begin = machine.seconds();
    machine.scheduler.sleep(fault.number);
    if (machine.scheduler.isMainThread()) record.lateTimes.emplace_back(begin, machine.seconds());
  }
  return nullptr;
}

void World::note(std::string what, std::string text) {
  record.noted.push_back({machine.seconds(), machine.scheduler.currentThreadName(),
                          machine.scheduler.currentBlock(), std::move(what), std::move(text)});
}

// One event after the other, then quiet, then the end.
void World::livesThroughEvents() {
  double last = kEventsSeconds;
  for (const Event& event : life_.plan.events) {
    if (event.life != life_.number || event.at == 0) continue;
    last = std::max(last, event.at);
    machine.scheduler.sleep(std::max(kFirstSecond, event.at - machine.seconds()));
    note("event", text(event));
    happen(event);
  }
  machine.scheduler.sleep(last + kQuietSeconds - machine.seconds());
  end(End::Running);
}

void World::happen(const Event& event) {
  const auto& [life, at, kind, what, number] = event;
  if (kind == "client") {
    clientDoes(what);
  } else if (kind == "press") {
    userPresses(what);
  } else if (kind == "reopen") {
    machine.scheduler.addToMain(MainLane::Events,
                                [this] { launcher_->delegate().applicationShouldHandleReopen(false); });
  } else if (kind == "session") {
    updater.beginScheduled(what, number);
  } else if (kind == "updater") {
    updater.canCheck = false;
  } else if (kind == "interface") {
    machine.scheduler.addToMain(MainLane::Events, [this, what = what] { useInterface(machine, what); });
  } else if (kind == "bundle gone") {
    const std::string bundle = machine.bundles.main().bundlePath();
    if (!isWholeBundle(kInstalledBundle) || bundle == kInstalledBundle) return;
    isBundleGone_ = true;
    machine.files.remove(bundle);
  } else if (kind == "other launcher") {
    ++record.otherLaunchers;
    machine.scheduler.addThread("other launcher", [this, seconds = number] { otherLauncher(seconds); });
  } else if (kind == "clock") {
    machine.clock.setNow(machine.clock.now() + std::chrono::seconds(static_cast<long>(number)));
  } else if (kind == "disk full" || kind == "disk free") {
    machine.files.setDiskFull(kind == "disk full");
    record.isDiskFaulty = true;
  } else {
    prepareSettings(event);
  }
}

std::vector<std::int32_t> World::clients() const {
  std::vector<std::int32_t> found;
  for (const auto& process : machine.processTable.running()) {
    const bool isOurs = process.parentProcessIdentifier == FakeProcessTable::kLauncher;
    if (isOurs && process.executablePath.find(kHelpers) != std::string::npos)
      found.push_back(process.processIdentifier);
  }
  return found;
}

void World::clientDoes(const std::string& what) {
  const std::string word = what.substr(0, what.find(' '));
  const std::string rest = what.size() > word.size() ? what.substr(word.size() + 1) : "";
  if (word == "post") return post(rest);
  const auto alive = clients();
  if (alive.empty()) return;
  const auto how =
      word == "killed" ? platform::TerminationReason::UncaughtSignal : platform::TerminationReason::Exit;
  if (word == "ends" || word == "killed") {
    machine.processTable.end(alive.back(), {.terminationStatus = std::stoi(rest), .terminationReason = how});
  } else if (word == "forks") {
    for (const auto& process : machine.processTable.running()) {
      if (process.processIdentifier == alive.back())
        machine.processTable.add(alive.back() + 5000,
                                 {.parent = 1, .executablePath = process.executablePath});
    }
  }
}

void World::post(const std::string& message) {
  ++posts_;
  const auto deliver = [&] {
    if (message.empty()) {
      machine.postUserInfo({});
    } else {
      machine.postUserInfo({{"message", message}, {"reason", "signal 11"}});
    }
  };
  if (!lostPosts_.contains(posts_)) deliver();
  if (doubledPosts_.contains(posts_)) deliver();
}

// A window behind an alert cannot be pressed; pressed twice it is gone.
void World::userPresses(const std::string& button) {
  machine.scheduler.addToMain(MainLane::Events, [this, button] {
    test::FakePromptWindow& prompt = machine.windows.prompt;
    if (!prompt.isInFront() || record.hasModalAlert) return;
    if (button == "close") {
      record.wasPromptClosedByHand = true;
      prompt.close();
    } else {
      (button == "continue" ? prompt.continueButton() : prompt.cancelButton()).press();
    }
  });
}

void World::setAdmin(const std::string& entry) {
  const std::size_t sign = entry.find('=');
  if (sign == std::string::npos) {
    machine.withoutAdmin(entry);
  } else {
    machine.withAdmin(entry.substr(0, sign), typed(entry.substr(sign + 1)));
  }
}

void World::setFuse(const std::string& version) {
  if (version == "none") {
    machine.files.remove(test::kFuseInformationFile);
  } else if (version == "damaged") {
    machine.files.addFile(test::kFuseInformationFile, "<plist><dict><key>CFBundleVersion");
  } else {
    machine.withFuse(version);
  }
}

void World::setRelease(const std::string& body) {
  std::string& record_ = machine.network.bodies[kReleaseURL];
  if (body.starts_with('{') || body.starts_with('[')) {
    record_ = body;
  } else if (body.starts_with("tag ")) {
    record_ = R"({"name": "newest", "tag_name": "macfuse-)" + body.substr(4) + "\"}";
  } else {
    record_ = R"({"name": "macFUSE )" + body + R"(", "tag_name": "x"})";
  }
}

// Another launcher of this user, with a client of its own and the same log.
void World::otherLauncher(double seconds) {
  const std::string bundle = machine.bundles.main().bundlePath();
  machine.processTable.add(kOtherLauncher, {.parent = 1, .executablePath = bundle + kExecutable});
  machine.processTable.add(kOtherClient,
                           {.parent = kOtherLauncher, .executablePath = programIn(bundle, "Karno.app")});
  const double end = machine.seconds() + seconds;
  while (machine.seconds() < end) {
    if (const auto stream = machine.files.openForAppending(test::kLogFile)) {
      stream->writeLine("2024-03-05 14:07:09:042+0100 (9001) [INFO] Main: Started Karno successfully");
      stream->flush();
    }
    machine.scheduler.sleep(0.7);
  }
  machine.processTable.remove(kOtherClient);
  machine.processTable.remove(kOtherLauncher);
}

long World::answerAlert(const platform::Alert& alert) {
  machine.scheduler.requireMainThread("Alerts::runModal");
  note("alert", alert.messageText);
  Event answer{.kind = "answer", .what = "1000", .number = kUsualAnswerSeconds};
  if (!answers_.empty()) {
    answer = answers_.front();
    answers_.pop_front();
  }
  if (alertsUp_++ == 0) alertSince_ = machine.seconds();  // another one may come up over it
  record.hasModalAlert = true;
  const bool isNever = answer.what == "never";
  machine.scheduler.runFor(isNever ? kForeverSeconds : std::max(0.01, answer.number));
  record.hasModalAlert = --alertsUp_ > 0;
  if (!record.hasModalAlert) record.alertTimes.emplace_back(alertSince_, machine.seconds());
  note("answer", answer.what);
  return std::stol(answer.what);
}

void World::terminate() {
  if (isSabotaged("no end")) return;
  note("terminate", "");
  machine.application.terminate();
  if (isTerminating_) return;
  isTerminating_ = true;
  machine.scheduler.addThread("exit", [this] {
    machine.scheduler.sleep(kExitSeconds);
    end(End::Terminated);
  });
  machine.scheduler.sleep(kForeverSeconds);  // the main loop is over
}

void World::clientLaunched(const std::string& executable, std::int32_t processIdentifier) {
  const std::size_t helpers = executable.find(kHelpers);
  if (helpers == std::string::npos) return;
  const std::string inside = executable.substr(helpers + std::string_view(kHelpers).size());
  std::string name = inside.substr(0, inside.find('/'));
  if (isSabotaged("wrong build")) name = name == "Karno.app" ? "Karno(Fuse).app" : "Karno.app";
  note("launch",
       name + " " + std::to_string(processIdentifier) + " alive " + std::to_string(clients().size()));
}

void World::opensAnew(const std::string& bundle, std::vector<std::string> arguments) {
  note("open", bundle);
  if (isWholeBundle(bundle)) next_ = NextStart{bundle, std::move(arguments)};
}

void World::wrote(const std::string& suite, std::string_view key, bool value) {
  note("write", suite + " " + std::string(key) + (value ? " true" : " false"));
}

bool World::isWholeBundle(const std::string& path) const {
  return machine.files.isThere(path + kExecutable) && machine.files.isThere(path + kResource);
}

// Moving may leave two bundles, or one in the Trash, but never none. When the one that it runs from is gone,
// the one that was installed before stays where it is.
void World::checkWholeBundle() {
  if (isWholeBundle(machine.bundles.main().bundlePath()) || isWholeBundle(kInstalledBundle)) return;
  if (isBundleGone_) endBroken("a whole bundle", "the installed one was taken away for one that is gone");
  bool isInTrash = false;
  machine.files.enumerate(kTrash, [&](const platform::DirectoryEntry& entry) {
    isInTrash |= isWholeBundle(std::string(kTrash) + "/" + entry.relativePath);
    return false;
  });
  if (isInTrash) return;
  moves_ = false;
  endBroken("a whole bundle", "no bundle is whole");
}

void World::endBroken(const std::string& oracle, const std::string& detail) {
  note("broken", oracle + ": " + detail);
  end(End::Broken, Verdict{oracle, detail});
}

// The threads that wait do so for ever.
void World::end(End how, const std::optional<Verdict>& broken) {
  machine.scheduler.setUnruliness({});
  finishRecord(how);
  Judgement judgement = judge(record, choice_);
  if (broken) judgement.verdicts.insert(judgement.verdicts.begin(), *broken);
  LifeReport report{.end = how,
                    .seconds = machine.seconds(),
                    .calls = calls_,
                    .verdicts = std::move(judgement.verdicts),
                    .stories = std::move(judgement.stories),
                    .faults = {faultsHit_.begin(), faultsHit_.end()},
                    .log = record.file,
                    .left = {},
                    .next = nextStart(how)};
  if (!report.next.empty()) report.left = leftBehind();
  const std::string trace = traceOf(record);
  report.traceHash = std::hash<std::string>()(trace);
  if (life_.wantsTrace || !report.verdicts.empty()) report.trace = trace;
  tell_(report);
  std::abort();  // telling ends the process
}

// Who was dropped, or has left an update behind, is opened again.
std::vector<NextStart> World::nextStart(End how) const {
  if (how == End::Terminated && next_) return {*next_};
  const bool isUpdated = how == End::Terminated && updater.isAtWork();
  if (how != End::Crashed && !isUpdated) return {};
  const std::string bundle = machine.bundles.mainBundle().bundlePath();
  return {NextStart{isWholeBundle(bundle) ? bundle : kInstalledBundle, {}}};
}

LeftBehind World::leftBehind() const {
  LeftBehind left;
  machine.files.enumerate("/", [&](const platform::DirectoryEntry& entry) {
    const std::string path = "/" + entry.relativePath;
    LeftBehind::File file{.path = path};
    if (entry.type == platform::FileType::Directory) file.type = 'd';
    if (entry.type == platform::FileType::SymbolicLink) file.type = 'l';
    if (file.type == 'l') file.text = machine.files.destinationOfSymbolicLink(path).value();
    if (const auto content = file.type == 'f' ? machine.files.content(path) : nullptr) {
      file.text = content->text;
      file.bytesBefore = static_cast<double>(content->bytesBefore);
    }
    left.files.push_back(std::move(file));
    return true;
  });
  const auto keep = [&](const std::string& suite, const platform::Value::Dictionary& values) {
    for (const auto& [key, value] : values) {
      if (const bool* const truth = value.get<bool>()) left.settings.push_back({suite, key, *truth});
    }
  };
  auto& defaults = const_cast<test::FakePlatform&>(machine).userDefaults;
  keep("", defaults.standard().values);
  keep(kSuite, defaults.suite(kSuite).values);
  for (const auto& process : machine.processTable.running()) {
    if (process.executablePath.find(kHelpers) != std::string::npos)
      left.clients.push_back(process.executablePath);
  }
  left.secondsSinceStart = machine.seconds() + (life_.left ? life_.left->secondsSinceStart : 0);
  return left;
}

void World::restore(const LeftBehind& left) {
  constexpr std::int32_t kFirstLeftClient = 4001;
  for (const char* top : {"/Users", "/Applications", "/Library", "/Volumes"}) machine.files.remove(top);
  for (const LeftBehind::File& file : left.files) {
    if (file.type == 'd') machine.files.addDirectory(file.path);
    if (file.type == 'l') machine.files.addSymbolicLink(file.path, file.text);
    if (file.type == 'f') machine.files.addFile(file.path, file.text);
    if (file.bytesBefore > 0)
      machine.files.setSize(file.path, static_cast<std::uint64_t>(file.bytesBefore) + file.text.size());
  }
  machine.userDefaults.standard().values.clear();
  machine.settings().values.clear();
  for (const auto& [suite, key, value] : left.settings) {
    (suite.empty() ? machine.userDefaults.standard() : machine.userDefaults.suite(suite))
        .values.insert_or_assign(key, platform::Value(value));
  }
  // The first line goes to the end of one that a full disk has cut.
  const std::string log = machine.files.text(test::kLogFile);
  record.isDiskFaulty |= !log.empty() && !log.ends_with('\n');
  std::int32_t process = kFirstLeftClient;
  for (const std::string& executable : left.clients)
    machine.processTable.add(process++, {.parent = 1, .executablePath = executable});
  machine.clock.setNow(machine.clock.now() +
                       std::chrono::milliseconds(std::llround(left.secondsSinceStart * 1000)));
}

void World::finishRecord(End how) {
  record.end = how;
  record.endAt = machine.seconds();
  record.clientsAlive = static_cast<int>(clients().size());
  record.isPromptInFront = machine.windows.prompt.isInFront();
  record.isUpdaterAtWork = updater.isAtWork();
  record.canUpdaterCheck = updater.canCheck;
  record.hasLogFolder = machine.files.isFolder(test::kLogFolder);
  for (const char* path : {test::kOldLogFile, test::kLogFile}) {
    const auto lines = machine.files.lines(path);
    record.file.insert(record.file.end(), lines.begin(), lines.end());
  }
  for (const Noted& one : record.noted) {
    if (machine.scheduler.hasEnded(one.block)) record.endedBlocks.insert(one.block);
  }
}

}  // namespace karno::simulation
