#include "fake_platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "platform/property_lists/property_lists.h"

namespace karno::test {

Line Line::parse(const std::string& text) {
  constexpr std::string_view kDate = "dddd-dd-dd dd:dd:dd:ddd?dddd (";
  const auto fits = [](char shape, char character) {
    const bool isDigit = character >= '0' && character <= '9';
    return shape == 'd' ? isDigit : shape == '?' ? character == '+' || character == '-' : shape == character;
  };
  const bool hasDate =
      text.size() > kDate.size() && std::equal(kDate.begin(), kDate.end(), text.begin(), fits);
  const std::size_t bracket =
      hasDate ? text.find_first_not_of("0123456789", kDate.size()) : std::string::npos;
  const std::size_t end = bracket == std::string::npos ? bracket : text.find("] ", bracket);
  if (end == std::string::npos || text.compare(bracket, 3, ") [") != 0) return {"", text};
  return {text.substr(bracket + 3, end - bracket - 3), text.substr(end + 2)};
}

void PrintTo(const Line& line, std::ostream* out) { *out << "[" << line.level << "] " << line.message; }

FakePlatform::FakePlatform(std::optional<std::uint64_t> ofSeed)
    : seed(ofSeed.value_or(defaultSeed())),
      platform_{.application = application,
                .alerts = alerts,
                .windows = windows,
                .workspace = workspace,
                .dispatch = dispatch,
                .clock = clock,
                .tasks = tasks,
                .processes = processes,
                .bundles = bundles,
                .userDefaults = userDefaults,
                .managedPreferences = managedPreferences,
                .distributedNotifications = notifications,
                .files = files,
                .text = text,
                .consoleLog = consoleLog,
                .systemVersion = systemVersion,
                .updaters = updater,
                .shell = shell,
                .urlLoading = network,
                .identifiers = identifiers,
                .processList = processList,
                .fileReading = fileReading,
                .fileManager = fileManager,
                .standardFolders = standardFolders,
                .mounts = mounts,
                .commands = commands,
                .appleScripts = appleScripts,
                .authorisations = authorisations,
                .notices = notices} {
  scheduler.setExceptionHandler([this](std::string_view what) {
    consoleLog.log("A block threw: " + std::string(what));
    ADD_FAILURE() << "a block on the thread " << scheduler.currentThreadName() << " threw: " << what;
  });
  platform::install(platform_);
}

FakePlatform::~FakePlatform() { scheduler.shutDown(); }

std::uint64_t FakePlatform::defaultSeed() {
  const char* given = std::getenv("KARNO_TEST_SEED");
  return given != nullptr ? std::strtoull(given, nullptr, 10) : 20240305;
}

FakePlatform& FakePlatform::withAdmin(const std::string& key, platform::Value value) {
  managedPreferences.domains["it.vantul.KarnoAdmin"].insert_or_assign(key, std::move(value));
  return *this;
}

FakePlatform& FakePlatform::withoutAdmin(const std::string& key) {
  managedPreferences.domains["it.vantul.KarnoAdmin"].erase(key);
  return *this;
}

FakePlatform& FakePlatform::withUserSetting(const std::string& key, platform::Value value) {
  settings().values.insert_or_assign(key, std::move(value));
  return *this;
}

FakePlatform& FakePlatform::withArguments(std::vector<std::string> afterProgramPath) {
  processes.commandLine.resize(1);
  processes.commandLine.insert(processes.commandLine.end(), afterProgramPath.begin(), afterProgramPath.end());
  return *this;
}

FakePlatform& FakePlatform::withEmbeddedBuilds() {
  bundles.addHelper("Karno.app", "it.vantul.Karno");
  bundles.addHelper("Karno(Fuse).app", "it.vantul.KarnoFuse");
  return *this;
}

FakePlatform& FakePlatform::withStrings(const std::string& json) {
  const std::string path = "/Applications/Karno.app/Contents/Resources/Base.lproj/Strings.json";
  files.addFile(path, json);
  bundles.main().resources["Strings.json"] = path;
  bundles.main().resources["Base.lproj/Strings.json"] = path;
  return *this;
}

FakePlatform& FakePlatform::withSystem(const std::string& macOS, const std::string& cpu) {
  shell.outputs[kSwVersLine] =
      "ProductName:\t\tmacOS\nProductVersion:\t\t" + macOS + "\nBuildVersion:\t\t23F79\n";
  shell.outputs[kUnameLine] = cpu + "\n";
  return *this;
}

FakePlatform& FakePlatform::withFuse(const std::string& version) {
  return withFuseInformation(platform::Value::Dictionary{{"CFBundleVersion", version}});
}

FakePlatform& FakePlatform::withFuseInformation(const platform::Value& value) {
  files.addFile(kFuseInformationFile, platform::propertyListXML(value).value());
  return *this;
}

FakePlatform& FakePlatform::withResource(const std::string& resource, const std::string& content) {
  const std::string path = "/Applications/Karno.app/Contents/Resources/" + resource;
  files.addFile(path, content);
  bundles.main().resources[resource] = path;
  return *this;
}

std::vector<Line> FakePlatform::log() const {
  std::vector<Line> result;
  for (const std::string& line : fullLogLines()) result.push_back(Line::parse(line));
  return result;
}

std::vector<Line> FakePlatform::consoleMessages() const {
  std::vector<Line> result;
  for (const std::string& line : console()) result.push_back(Line::parse(line));
  return result;
}

void FakePlatform::whenLogged(const Line& line, std::function<void()> block) {
  consoleLog.whenLogged = [line, run = std::move(block)](std::string_view entry) {
    if (Line::parse(std::string(entry)) == line) run();
  };
}

void FakePlatform::postMessage(platform::Value message) { postUserInfo({{"message", std::move(message)}}); }

void FakePlatform::postUserInfo(platform::Value::Dictionary userInfo) {
  notifications.post({.name = "it.vantul.Karno.KarnoWrapperNotification",
                      .object = "it.vantul.Karno.KarnoWrapperNotification",
                      .userInfo = std::move(userInfo)});
}

}  // namespace karno::test
