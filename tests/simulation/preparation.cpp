#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>

#include "world.h"

// What the machine of a life is like before the launcher starts: what the plan says, and what earlier lives
// left.
namespace karno::simulation {
namespace {

using test::FakeProcessTable;

constexpr const char* kTouchFile = "/Users/tester/Library/Caches/Karno/cache.noindex/.karnoUpdated";
constexpr const char* kOldLog = "/Users/tester/Library/Logs/Karno for macOS/it.vantul.Karno 1.log";
constexpr const char* kSuppress = "moveToApplicationsFolderAlertSuppress";
constexpr const char* kMarkerFile = "/Users/tester/KARNOUPGRADE.debug";
constexpr const char* kReleaseURL = "https://api.github.com/repos/macfuse/macfuse/releases/latest";
constexpr double kAppKitOfMacOS10_5 = 949.54;
constexpr const char* kMountedImages =
    "<plist><dict><key>images</key><array><dict><key>system-entities</key><array><dict>"
    "<key>dev-entry</key><string>/dev/disk4s1</string></dict></array></dict></array></dict></plist>";
constexpr const char* kStrings =
    R"({"OK": "OK", "YES": "Yes", "NO": "No", "CANCEL": "Cancel", "CONTINUE": "Continue",
 "WHOOPS": "Whoops", "ERROR_FATAL": "It crashed.", "NOT_NOW": "Not now", "UPDATE": "Update",
 "DRIVE_MOUNT_FAILED": "No drive.", "WHAT_WOULD_YOU_LIKE_TO_DO": "What now?",
 "MESSAGE_FUSE_INSTALL": "Install it.", "MESSAGE_FUSE_INSTALL_REQUIRED": "macFUSE is needed.",
 "MESSAGE_FUSE_UPGRADE_REQUIRED": "A newer macFUSE is needed.",
 "MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE": "Go on to the site.", "UPLOADED_FILE": "{{ file }}",
 "ITEM_AND_N_MORE": "{{ name }} and {{n}} more", "MESSAGE_CONTACT_SYS_ADMIN": "Ask.",
 "MESSAGE_ARE_YOU_SURE_CONTINUE": "Sure?"})";
constexpr const char* kSuite = "it.vantul.karno";

const char* identifierOf(std::string_view build) {
  return build == "Karno.app" ? "it.vantul.Karno" : "it.vantul.KarnoFuse";
}

}  // namespace

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
  using Preparations = std::map<std::string_view, std::function<void()>>;
  const std::string& what = event.what;
  const auto count = static_cast<std::uint64_t>(event.number);
  const auto age = std::chrono::seconds(static_cast<long>(event.number));
  const Preparations ofEveryLife = {
      {"admin", [&] { setAdmin(what); }},
      {"cpu", [&] { machine.shell.outputs[test::kUnameLine] = what.empty() ? "" : what + "\n"; }},
      {"disk image", [&] { mountDiskImage(); }},
      {"fuse", [&] { setFuse(what); }},
      {"lumberjack", [&] { machine.files.addFile(kOldLog, "old", machine.clock.now() - age); }},
      {"macOS", [&] { setSystem(what); }},
      {"marker", [&] { machine.files.addFile(kMarkerFile, what); }},
      {"no bus", [&] { hasBus_ = false; }},
      {"no cache folder", [&] { machine.files.remove("/Users/tester/Library/Caches/Karno"); }},
      {"no rights", [&] { machine.files.readOnly.insert("/Applications"); }},
      {"no strings", [&] { hasStrings_ = false; }},
      {"old copy", [&] { addOldCopy(false); }},
      {"old copy runs", [&] { addOldCopy(true); }},
      {"post doubled", [&] { doubledPosts_.insert(count); }},
      {"post lost", [&] { lostPosts_.insert(count); }},
      {"release", [&] { setRelease(what); }},
      {"sabotage", [&] { sabotage_.insert(what); }},
      {"setting", [&] { machine.withUserSetting(what.substr(0, what.find('=')), what.ends_with("=1")); }},
      {"suppress move", [&] { machine.userDefaults.standard().values.insert_or_assign(kSuppress, true); }},
      {"touch file", [&] { machine.files.addFile(kTouchFile, ""); }},
      {"updater", [&] { (what == "of Linux" ? updater.isOfLinux : updater.canStart) = what == "of Linux"; }},
      {"without build", [&] { machine.bundles.removeHelper(what); }},
      {"without executable", [&] { machine.bundles.addHelper(what, identifierOf(what), false); }},
  };
  const Preparations ofTheFirstLife = {
      {"argument", [&] { machine.processes.commandLine.push_back(what); }},
      {"lies at", [&] { lieAt(what); }},
      {"log", [&] { machine.files.setSize(test::kLogFile, count); }},
  };
  const Preparations ofItsOwnLife = {
      {"answer", [&] { answers_.push_back(event); }},
      {"client", [&] { ignoreTermination(); }},
      {"crash", [&] { crashAtCall_ = count; }},
      {"fault", [&] { faults_.push_back(faultOf(what, event.number)); }},
      {"session", [&] { updater.planRequested(what, event.number); }},
  };
  bool isKnown = false;
  const auto perform = [&](const Preparations& preparations, bool isItsTime) {
    const auto found = preparations.find(event.kind);
    isKnown |= found != preparations.end();
    if (isItsTime && found != preparations.end()) found->second();
  };
  perform(ofEveryLife, true);
  perform(ofTheFirstLife, life_.number == 0);
  perform(ofItsOwnLife, life_.number == event.life);
  if (!isKnown) throw std::logic_error("there is no such event: " + event.kind);
}

void World::setSystem(const std::string& version) {
  const bool isArm = machine.shell.outputs[test::kUnameLine].starts_with("arm64");
  machine.withSystem(version, isArm ? "arm64" : "x86_64");
  std::array<int, 3> numbers{};
  std::sscanf(version.c_str(), "%d.%d.%d", &numbers[0], &numbers[1], &numbers[2]);
  machine.systemVersion.running = numbers;
  if (numbers[0] == 10 && numbers[1] <= 5) machine.systemVersion.appKit = kAppKitOfMacOS10_5;
}

void World::lieAt(const std::string& bundle) {
  machine.bundles.main().setPath(bundle);
  for (const std::string name : {"Karno.app", "Karno(Fuse).app"}) {
    test::FakeBundle& helper = machine.bundles.add(bundle + kHelpers + name);
    helper.info = {{"CFBundleIdentifier", identifierOf(name)}};
    helper.executable = name.substr(0, name.rfind('.'));
  }
}

void World::ignoreTermination() {
  for (const char* name : {"Karno.app", "Karno(Fuse).app"})
    machine.processTable.programs[programIn(machine.bundles.main().bundlePath(), name)].ignoresTermination =
        true;
}

void World::addOldCopy(bool runs) {
  if (machine.bundles.main().bundlePath() == kInstalledBundle) return;
  machine.files.addFile(std::string(kInstalledBundle) + kExecutable, "old launcher");
  machine.files.addFile(std::string(kInstalledBundle) + kResource, kStrings);
  if (runs) machine.processTable.addApplication(kInstalledBundle);
}

void World::mountDiskImage() {
  machine.mounts.mounts["/Volumes/Karno"] = platform::MountInformation{"/dev/disk4s1", false};
  machine.commands.answers.insert_or_assign(
      "/usr/bin/hdiutil|info|-plist", platform::CommandEnd{.end = {}, .standardOutput = kMountedImages});
}

void World::setAdmin(const std::string& entry) {
  const std::size_t sign = entry.find('=');
  if (sign == std::string::npos) {
    machine.withoutAdmin(entry);
  } else {
    const std::string text = entry.substr(sign + 1);
    machine.withAdmin(entry.substr(0, sign), text == "<true/>" ? platform::Value(true) : text);
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
  const bool isTag = body.starts_with("tag ");
  const std::string release = isTag ? R"({"name": "newest", "tag_name": "macfuse-)" + body.substr(4) + "\"}"
                                    : R"({"name": "macFUSE )" + body + R"(", "tag_name": "x"})";
  machine.network.bodies[kReleaseURL] = body.find_first_of("{[") == 0 ? body : release;
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

}  // namespace karno::simulation
