#include "plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <sstream>

#include "faults.h"

namespace karno::simulation {
namespace {

// SplitMix64, apart from the one of the schedule: an event that is left out changes no other one.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed * 0xd1342543de82ef95U) {}

  std::uint64_t below(std::uint64_t limit) {
    std::uint64_t mixed = (state_ += 0x9e3779b97f4a7c15U);
    mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
    return (mixed ^ (mixed >> 31U)) % limit;
  }
  bool percent(std::uint64_t chance) { return below(100) < chance; }
  double seconds(double from, double to) {
    return from + (to - from) * static_cast<double>(below(1000)) / 1000;
  }
  template <class List>
  const auto& of(const List& list) {
    return list[below(std::size(list))];
  }

 private:
  std::uint64_t state_;
};

constexpr const char* kSystems[] = {"14.5.0", "14.5.0",  "13.0.0",  "13.0",  "12.6.1",
                                    "12.2",   "11.7.10", "10.15.7", "10.5.8"};
constexpr const char* kProcessors[] = {"x86_64", "x86_64", "x86_64", "i386", ""};
constexpr const char* kFuses[] = {"4.4.1",  "4.4.1", "4.10.0", "4.4.0", "4.0.4",  "3.11.2",
                                  "3.10.9", "none",  "none",   "",      "damaged"};
constexpr const char* kReleases[] = {"4.5.0", "4.4.1", "4", "{", "[]", "tag 4.9.0"};
constexpr const char* kTruths[] = {"YES", "NO", "", "<true/>", " 0012"};
constexpr const char* kSettings[] = {"isFirstStartup=0",  "isFirstStartup=1",          "verboseLogging=1",
                                     "useFileProvider=1", "useFileProviderVerified=1", "useFileProvider=0"};
constexpr const char* kMessages[] = {
    "check-for-updates",  "enable-automatic-updates",  "disable-automatic-updates",
    "user-selected-quit", "app-is-terminating",        "app-is-terminating-abnormally",
    "app-needs-restart",  "restart-wrapper-with-fuse", "restart-wrapper-with-file-provider",
    "restart-wrapper",    "CHECK-FOR-UPDATES",         ""};
constexpr const char* kSessions[] = {
    "nothing",         "skip",     "dismiss",  "odd choice", "download cancelled", "download fails",
    "unpacking fails", "installs", "installs", "no feed"};
constexpr const char* kAnswers[] = {"1000", "1000", "1000", "1001", "1001", "0", "-1000", "never"};
constexpr const char* kMarkers[] = {"", "https://feeds.example.org/a.xml\n", "no url at all"};
constexpr const char* kInterfaces[] = {
    "asks again", "cancels progress", "moves twice", "wants an end", "texts", "names", "files", "settings"};
constexpr const char* kBuilds[] = {"Karno.app", "Karno(Fuse).app"};

std::vector<std::string> partsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> parts;
  for (std::string part; std::getline(stream >> std::ws, part, ',');) parts.push_back(part);
  return parts;
}

const std::vector<std::string> kFaults = partsOf(
    "Files::read fails 5 once, Files::read odd once, Files::localLibraryFolders odd once, "
    "Files::createFile fails 28, Files::createDirectory fails 13, Files::remove fails 1, "
    "Files::move fails 28, Files::openForAppending fails 13, Files::openForAppending fails 13 once, "
    "Files::writeLine fails 28 once, Files::writeLine half 28 once, Files::writeLine late 2 once, "
    "UserDefaults::objectForKey odd, UserDefaults::boolForKey odd once, UserDefaults::setBool fails 28, "
    "ManagedPreferences::copyAppValue odd, ManagedPreferences::copyAppValue fails 13, "
    "Tasks::launch fails 12, Tasks::launch fails 12 once, Tasks::launch late 2 once, "
    "Processes::terminate fails 1, Processes::terminate fails 3, Processes::waitForChild fails 10, "
    "Processes::waitForChild fails 22, Processes::name odd, Shell::open fails 24, Shell::open odd once, "
    "Shell::open fails 24 once, Shell::close fails 10, Shell::open late 4 once, Commands::run fails 2, "
    "Commands::run odd, Commands::run late 6 once, Commands::start fails 11, "
    "URLLoading::contentsOfURL fails 0, URLLoading::contentsOfURL odd, "
    "URLLoading::contentsOfURL late 100000, Workspace::runningApplications odd once, "
    "Bundles::bundleAtPath fails 0 once, Dispatch::sleep late 1 once");

// Of services that only a move uses.
const std::vector<std::string> kFaultsOfMoves = partsOf(
    "Authorisations::create fails 0, Authorisation::copyRight fails 0, Authorisation::copyRight odd, "
    "Authorisation::canExecuteWithPrivileges fails 0, Authorisation::executeWithPrivileges fails 2, "
    "Authorisation::executeWithPrivileges half 1, AppleScripts::execute fails 0, "
    "Mounts::informationOf fails 0, FileManager::copyItem half 28, FileManager::copyItem fails 28, "
    "FileManager::trashItem fails 1, FileManager::isWritable odd");

class Composer {
 public:
  Composer(std::uint64_t seed, Weather weather)
      : dice_(seed), weather_(weather), plan_{.seed = seed, .events = {}} {}

  Plan compose() {
    if (weather_ == Weather::Calm) return calm();
    machine();
    for (life_ = 0; life_ < kLivesMax; ++life_) {
      lifeOfTheClient();
      userAndAdministrator();
      updates();
      if (weather_ == Weather::Foul) faults();
    }
    std::ranges::stable_sort(plan_.events, [](const Event& a, const Event& b) {
      return a.life != b.life ? a.life < b.life : a.at < b.at;
    });
    return std::move(plan_);
  }

 private:
  // A client that comes and goes as it should, on a machine that has what it needs.
  Plan calm() {
    add(0, "fuse", dice_.percent(50) ? "4.4.1" : "4.10.0");
    if (dice_.percent(50)) add(0, "setting", "isFirstStartup=0");
    if (dice_.percent(30)) add(0, "setting", "verboseLogging=1");
    maybe(20, "admin", std::string("UPDATES_ENABLED=") + (dice_.percent(50) ? "YES" : "NO"));
    maybe(20, "lumberjack", "", 1'300'000);
    maybe(20, "session", dice_.percent(50) ? "nothing" : "skip", 0.5);
    if (dice_.percent(30)) add(dice_.seconds(11, 13), "client", "post check-for-updates");
    if (dice_.percent(30)) add(dice_.seconds(2, 13), "client", "post enable-automatic-updates");
    if (dice_.percent(40)) leave(dice_.seconds(2, 8), "post app-needs-restart");
    if (dice_.percent(40)) leave(dice_.seconds(16, 20), "post user-selected-quit");
    std::ranges::stable_sort(plan_.events, {}, &Event::at);
    return std::move(plan_);
  }
  void leave(double at, std::string message) {
    add(at, "client", std::move(message));
    add(at + dice_.seconds(0.1, 2), "client", "ends 0");
  }

  void add(double at, std::string kind, std::string what = {}, double number = 0) {
    plan_.events.push_back({life_, at, std::move(kind), std::move(what), number});
  }
  void maybe(std::uint64_t chance, std::string kind, std::string what = {}, double number = 0) {
    if (dice_.percent(chance)) add(0, std::move(kind), std::move(what), number);
  }

  // Often it is just then that something else happens, or that the launcher starts.
  double later() {
    if (dice_.percent(10)) return kWhileStarting;
    if (dice_.percent(75)) moment_ = std::max(kWhileStarting, dice_.seconds(0, kEventsSeconds));
    return moment_;
  }

  void machine() {
    if (dice_.percent(60)) add(0, "macOS", dice_.of(kSystems));
    if (dice_.percent(30)) add(0, "cpu", dice_.of(kProcessors));
    if (dice_.percent(85)) add(0, "fuse", dice_.of(kFuses));
    if (dice_.percent(50)) add(0, "release", dice_.of(kReleases));
    for (int i = 0; i < 2; ++i) {
      if (dice_.percent(50)) add(0, "setting", dice_.of(kSettings));
    }
    if (dice_.percent(15)) add(0, "admin", std::string("USE_FILE_PROVIDER=") + dice_.of(kTruths));
    if (dice_.percent(15)) add(0, "admin", std::string("UPDATES_ENABLED=") + dice_.of(kTruths));
    if (dice_.percent(12)) move();
    maybe(3, "without build", dice_.of(kBuilds));
    maybe(2, "without executable", dice_.of(kBuilds));
    maybe(8, "argument", "-launch");
    maybe(10, "argument", dice_.of(kBuilds));
    maybe(5, "log", "", 9'999'000 + static_cast<double>(dice_.below(2000)));
    maybe(5, "lumberjack", "", static_cast<double>(dice_.of(std::array{1'209'600, 1'209'601, 60})));
    maybe(10, "touch file");
    maybe(5, "no cache folder");
    maybe(10, "marker", dice_.of(kMarkers));
    if (weather_ == Weather::Foul) maybe(5, "no strings");
  }

  void move() {
    moves_ = true;
    add(0, "lies at", dice_.percent(70) ? "/Users/tester/Downloads/Karno.app" : "/Volumes/Karno/Karno.app");
    maybe(30, "old copy");
    maybe(10, "old copy runs");
    maybe(20, "disk image");
    maybe(25, "no rights");
    maybe(10, "suppress move");
    if (dice_.percent(15)) add(dice_.seconds(0.1, 4), "bundle gone");
    if (dice_.percent(10)) add(dice_.seconds(0.1, 2), "interface", "moves twice");
  }

  void lifeOfTheClient() {
    maybe(15, "client", "ignores SIGTERM");
    const std::uint64_t messages = dice_.below(4);
    for (std::uint64_t i = 0; i < messages; ++i) {
      const double at = later();
      const std::string message = dice_.of(kMessages);
      add(at, "client", "post " + message);
      // Who says such a thing usually goes.
      if (message != "check-for-updates" && dice_.percent(60))
        add(at + dice_.seconds(0, 6), "client", dice_.percent(80) ? "ends 0" : "killed 11");
      if (dice_.percent(10)) add(at + dice_.seconds(0, 1), "client", "post " + message);
    }
    if (dice_.percent(35)) add(later(), "client", dice_.percent(70) ? "ends 1" : "killed 9");
    if (dice_.percent(8)) add(later(), "client", "forks");
  }

  void userAndAdministrator() {
    for (std::uint64_t i = dice_.below(3); i > 0; --i)
      add(0, "answer", dice_.of(kAnswers), dice_.percent(80) ? dice_.seconds(0, 3) : dice_.seconds(3, 20));
    if (dice_.percent(60)) add(later(), "press", "continue");
    if (dice_.percent(25)) add(later(), "press", dice_.percent(60) ? "cancel" : "close");
    if (dice_.percent(10)) add(later(), "reopen");
    if (dice_.percent(35)) add(later(), "fuse", dice_.of(kFuses));
    if (dice_.percent(10)) add(later(), "admin", std::string("UPDATES_ENABLED=") + dice_.of(kTruths));
    if (dice_.percent(10)) add(later(), "admin", "USE_FILE_PROVIDER");
    if (dice_.percent(10)) add(later(), "setting", dice_.of(kSettings));
    if (dice_.percent(8)) add(later(), "other launcher", "", dice_.seconds(2, 20));
  }

  void updates() {
    const std::uint64_t count = dice_.below(3);
    for (std::uint64_t i = 0; i < count; ++i)
      add(dice_.percent(50) ? later() : 0, "session", dice_.of(kSessions), dice_.seconds(0, 1.5));
    if (dice_.percent(8)) add(later(), "interface", dice_.of(kInterfaces));
    if (life_ == 0) maybe(25, "updater", "of Linux");
    maybe(4, "updater", "cannot start");
    if (dice_.percent(4)) add(later(), "updater", "cannot check");
  }

  void faults() {
    for (std::uint64_t i = dice_.below(3); i > 0; --i)
      add(0, "fault", dice_.of(dice_.percent(moves_ ? 60 : 5) ? kFaultsOfMoves : kFaults),
          static_cast<double>(1 + dice_.below(dice_.percent(70) ? 4 : 60)));
    if (dice_.percent(15)) add(0, "crash", "", static_cast<double>(1 + dice_.below(1200)));
    if (dice_.percent(10)) {
      const double at = later();
      add(at, "disk full");
      if (dice_.percent(60)) add(at + dice_.seconds(0, 5), "disk free");
    }
    if (dice_.percent(5)) add(later(), "clock", "", dice_.seconds(-100000, 100000));
    if (life_ == 0) maybe(3, "no bus");
    maybe(5, "post lost", "", static_cast<double>(dice_.below(3)));
    maybe(5, "post doubled", "", static_cast<double>(dice_.below(3)));
  }

  Dice dice_;
  const Weather weather_;
  Plan plan_;
  int life_ = 0;
  bool moves_ = false;
  double moment_ = kWhileStarting;
};

}  // namespace

std::string text(const Event& event) {
  std::string line = fmt::format("life {} at {:7.3f}  {}", event.life, event.at, event.kind);
  if (!event.what.empty()) line += " " + event.what;
  if (event.number != 0) line += fmt::format(" ({:g})", event.number);
  return line;
}

std::string text(const Plan& plan) {
  std::string lines;
  for (const Event& event : plan.events) lines += "  " + text(event) + "\n";
  return lines;
}

Plan planOf(std::uint64_t seed, Weather weather) { return Composer(seed, weather).compose(); }

Fault faultOf(const std::string& text, double firstCall) {
  using How = Fault::How;
  static const std::map<std::string, How> kHows = {
      {"fails", How::Fails}, {"late", How::Late}, {"half", How::Half}, {"odd", How::Odd}};
  constexpr std::uint64_t kForEver = 1'000'000'000;
  Fault fault{.firstCall = static_cast<std::uint64_t>(firstCall),
              .callsMax = text.ends_with(" once") ? 1 : kForEver};
  std::string how;
  std::istringstream(text) >> fault.operation >> how >> fault.number;
  fault.how = kHows.at(how);
  return fault;
}

}  // namespace karno::simulation
