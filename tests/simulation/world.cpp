#include "world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

#include "interposition.h"
#include "launcher.h"
#include "other_programs.h"

namespace karno::simulation {
namespace {

using test::FakeProcessTable;
using test::MainLane;

constexpr std::uint64_t kStepsMax = 40;  // between two events of one moment
constexpr double kExitSeconds = 0.25;    // from the end of the main loop to that of the process
constexpr double kForeverSeconds = 1e9;
constexpr double kUsualAnswerSeconds = 1;
constexpr std::int32_t kOtherLauncher = 9001;
constexpr std::int32_t kOtherClient = 9002;

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

std::string programIn(const std::string& launcher, const std::string& build) {
  return launcher + kHelpers + build + "/Contents/MacOS/" + build.substr(0, build.rfind('.'));
}

World::World(const Life& life, std::function<void(const LifeReport&)> tell)
    : machine(life.plan.seed * 31 + static_cast<std::uint64_t>(life.number)),
      life_(life),
      tell_(std::move(tell)) {
  listenToExpectations(*this);
  buildMachine();
  installServices(*this);
  interpose(machine.scheduler, [this](const std::string& how) { endBroken("no deadlock", how); });
}

World::~World() = default;

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
    if (event.at > std::max(kWhileStarting, machine.seconds())) {
      machine.scheduler.sleep(event.at - machine.seconds());
    } else {
      for (auto steps = machine.scheduler.random() % kStepsMax; steps > 0; --steps)
        machine.scheduler.sleep(0);
    }
    note("event", text(event));
    happen(event);
  }
  machine.scheduler.sleep(last + kQuietSeconds - machine.seconds());
  end(End::Running);
}

void World::happen(const Event& event) {
  const std::string& what = event.what;
  const double number = event.number;
  const auto inEvents = [&](std::function<void()> block) {
    machine.scheduler.addToMain(MainLane::Events, std::move(block));
  };
  const std::map<std::string_view, std::function<void()>> kinds = {
      {"bundle gone", [&] { throwBundleAway(); }},
      {"client", [&] { clientDoes(what); }},
      {"clock",
       [&] { machine.clock.setNow(machine.clock.now() + std::chrono::seconds(static_cast<long>(number))); }},
      {"disk free", [&] { machine.files.setDiskFull(false); }},
      {"disk full", [&] { machine.files.setDiskFull(record.isDiskFaulty = true); }},
      {"interface", [&] { inEvents([this, what] { useInterface(machine, what); }); }},
      {"other launcher",
       [&] { machine.scheduler.addThread("other launcher", [=, this] { otherLauncher(number); }); }},
      {"press", [&] { inEvents([this, what] { userPresses(what); }); }},
      {"reopen", [&] { inEvents([this] { launcher_->delegate().applicationShouldHandleReopen(false); }); }},
      {"session", [&] { updater.beginScheduled(what, number); }},
      {"updater", [&] { updater.canCheck = false; }},
  };
  const auto kind = kinds.find(event.kind);
  return kind == kinds.end() ? prepare(event) : kind->second();
}

void World::throwBundleAway() {
  const std::string bundle = machine.bundles.main().bundlePath();
  if (!isWholeBundle(kInstalledBundle) || bundle == kInstalledBundle) return;
  isBundleGone_ = true;
  machine.files.remove(bundle);
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
  if (!hasBus_) return;
  if (!lostPosts_.contains(posts_)) deliver();
  if (doubledPosts_.contains(posts_)) deliver();
}

// A window behind an alert cannot be pressed; pressed twice it is gone.
void World::userPresses(const std::string& button) {
  test::FakePromptWindow& prompt = machine.windows.prompt;
  if (!prompt.isInFront() || record.hasModalAlert) return;
  if (button == "close") {
    record.wasPromptClosedByHand = true;
    prompt.close();
  } else {
    (button == "continue" ? prompt.continueButton() : prompt.cancelButton()).press();
  }
}

// Another launcher of this user, with a client of its own and the same log.
void World::otherLauncher(double seconds) {
  ++record.otherLaunchers;
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
