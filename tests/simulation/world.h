#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fake_platform.h"
#include "faults.h"
#include "launcher.h"
#include "life.h"
#include "plan.h"
#include "record.h"
#include "updater_session.h"

namespace karno::simulation {

// The launcher's bundle wherever it lies, and where it belongs.
inline constexpr const char* kInstalledBundle = "/Applications/Karno.app";

// In it: the builds of the client, and without which of its files it is not whole.
inline constexpr const char* kHelpers = "/Contents/Helpers/";
inline constexpr const char* kExecutable = "/Contents/MacOS/Karno";
inline constexpr const char* kResource = "/Contents/Resources/Base.lproj/Strings.json";
inline constexpr const char* kTrash = "/Users/tester/.Trash";

// The program of a build of the client, which is named as its bundle.
std::string programIn(const std::string& launcher, const std::string& build);

// A Mac with its user, its administrator and its disk, in which one life of the launcher goes by. Everything
// is in this process; its end is the end of the process.
class World {
 public:
  // `left` is what an earlier life has left behind; `tell` takes the report, once.
  World(const Life& life, std::function<void(const LifeReport&)> tell);
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // Starts the launcher.
  [[noreturn]] void run();

  // Every call of a service comes here first: other threads may go on, the launcher may be dropped, and a
  // fault may be due, which stays null when the call goes well. What is late has been so on return.
  const Fault* call(std::string_view operation);

  void note(std::string what, std::string text);

  long answerAlert(const platform::Alert& alert);
  void terminate();
  void clientLaunched(const std::string& executable, std::int32_t processIdentifier);
  void opensAnew(const std::string& bundle, std::vector<std::string> arguments);
  void wrote(const std::string& suite, std::string_view key, bool value);

  // A mutation of the launcher, for the tests of the oracles.
  bool isSabotaged(std::string_view how) const { return sabotage_.contains(std::string(how)); }

  [[noreturn]] void end(End how, const std::optional<Verdict>& broken = std::nullopt);
  [[noreturn]] void endBroken(const std::string& oracle, const std::string& detail);

  test::FakePlatform machine;
  UpdaterSession updater{*this};
  Record record;

 private:
  void buildMachine();
  void restore(const LeftBehind& left);
  void prepare(const Event& event);
  void setSystem(const std::string& version);
  void lieAt(const std::string& bundle);
  void ignoreTermination();
  void addOldCopy(bool runs);
  void mountDiskImage();
  void happen(const Event& event);
  void throwBundleAway();
  void clientDoes(const std::string& what);
  void post(const std::string& message);
  void userPresses(const std::string& button);
  void setAdmin(const std::string& text);
  void setFuse(const std::string& version);
  void setRelease(const std::string& body);
  void otherLauncher(double seconds);
  void livesThroughEvents();
  void checkWholeBundle();
  bool isWholeBundle(const std::string& path) const;
  void finishRecord(End how);
  LeftBehind leftBehind() const;
  std::vector<NextStart> nextStart(End how) const;
  std::vector<std::int32_t> clients() const;
  Choice choice() const;

  const Life& life_;
  std::function<void(const LifeReport&)> tell_;
  std::unique_ptr<test::Launcher> launcher_;
  Choice choice_;
  std::vector<Fault> faults_;
  std::set<std::string> faultsHit_;
  std::deque<Event> answers_;
  std::set<std::string> sabotage_;
  std::set<std::uint64_t> lostPosts_;
  std::set<std::uint64_t> doubledPosts_;
  bool hasBus_ = true;
  std::uint64_t posts_ = 0;
  std::uint64_t calls_ = 0;
  std::uint64_t crashAtCall_ = 0;
  bool moves_ = false;
  bool hasStrings_ = true;
  bool isBundleGone_ = false;
  bool isTerminating_ = false;
  int alertsUp_ = 0;
  double alertSince_ = 0;
  std::optional<NextStart> next_;
};

// The services of its machine with the world in front of each: every call goes through it.
void installServices(World& world);

}  // namespace karno::simulation
