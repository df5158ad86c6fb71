#include "karnoctl/report/report_content.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "karnoctl/error_text.h"
#include "karnoctl/report/disguise.h"
#include "karnoctl/self_check/system_tools.h"
#include "log/log_files.h"
#include "move/shell_scripts.h"
#include "platform/property_lists/property_lists.h"
#include "platform/system_path.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

using platform::Platform;

constexpr std::uint64_t kReportedBytesMax = 16U << 20U;  // a log has 10 MB
constexpr std::size_t kCrashReportsMax = 100;
constexpr std::chrono::days kCrashReportAgeMax{30};

class Gathering {
 public:
  Gathering(const Platform& platform, Disguise disguise)
      : platform_(platform), disguise_(std::move(disguise)) {}

  void add(const std::string& name, const std::string& text) {
    content.files.push_back({.name = name, .content = disguise_.of(text)});
  }

  void leaveOut(const std::string& name, const std::string& why) {
    content.leftOut.push_back(name + ": " + disguise_.of(why));
  }

  // The end of it, where it is larger than anything of the launcher's.
  void addFile(const std::string& path, const std::string& name) {
    const auto file = platform_.fileReading.open(path);
    if (!file) return leaveOut(name, reasonOf(file.error()));
    const std::uint64_t size = file.value()->sizeInBytes();
    const auto text = file.value()->read(size - std::min(size, kReportedBytesMax), kReportedBytesMax);
    text ? add(name, text.value()) : leaveOut(name, reasonOf(text.error()));
  }

  // As "%@" prints it: a list in the binary form is none to read.
  void addPropertyList(const std::string& path, const std::string& name) {
    const auto bytes = platform_.files.read(path);
    const auto list = bytes ? platform::parsePropertyList(bytes.value()) : bytes.error();
    list ? add(name, list.value().description() + "\n") : leaveOut(name, reasonOf(list.error()));
  }

  // What karnoctl itself says, in a process of its own: the self-check may come to a sudden end.
  void addAnswer(const std::string& name, const std::string& program, const std::vector<std::string>& words) {
    const auto answer = askTool(platform_.commands, shellQuotedString(program), words);
    if (!answer) return leaveOut(name, "karnoctl has not ended by itself");
    add(name, name.ends_with(".json") ? answer->text
                                      : fmt::format("{}(exit status {})\n", answer->text, answer->status));
  }

  std::string disguised(const std::string& text) const { return disguise_.of(text); }

  ReportContent content;

 private:
  const Platform& platform_;
  const Disguise disguise_;
};

void addCrashReports(Gathering& gathering, const Platform& platform, const std::string& home) {
  const std::string folder = home + "/Library/Logs/DiagnosticReports/";
  const platform::Date oldest = platform.clock.now() - kCrashReportAgeMax;
  std::vector<std::string> names;
  platform.files.enumerate(folder, [&](const platform::DirectoryEntry& entry) {
    const bool isWanted = entry.type == platform::FileType::Regular && entry.creationDate &&
                          *entry.creationDate >= oldest && entry.relativePath.starts_with("Karno");
    if (isWanted && names.size() < kCrashReportsMax) names.push_back(entry.relativePath);
    return false;
  });
  std::ranges::sort(names);
  for (const std::string& name : names)
    gathering.addFile(folder + name, "crashes/" + gathering.disguised(name));
  if (names.empty()) gathering.leaveOut("crashes/", "none of the last 30 days");
}

void addSettings(Gathering& gathering, const std::string& home) {
  const std::string preferences = home + "/Library/Preferences/";
  const std::string managed = platform::systemPath("/Library/Managed Preferences/");
  const std::string domain = "it.vantul.KarnoAdmin.plist";
  gathering.addPropertyList(managed + lastPathComponent(home) + "/" + domain, "settings/managed-user.txt");
  gathering.addPropertyList(managed + domain, "settings/managed.txt");
  gathering.addPropertyList(preferences + domain, "settings/administrator-user.txt");
  gathering.addPropertyList(platform::systemPath("/Library/Preferences/") + domain,
                            "settings/administrator-machine.txt");
  gathering.addPropertyList(preferences + "it.vantul.KarnoWrapper.plist", "settings/launcher.txt");
}

}  // namespace

ReportContent gatherReport(const Platform& platform, const platform::RuntimeCheck& runtime) {
  const std::string home = platform.files.homeDirectory();
  const auto account = askTool(platform.commands, "/usr/bin/id", {"-un"});
  Gathering gathering(
      platform,
      Disguise({home, platform.fileManager.resolvingSymbolicLinks(home)},
               {lastPathComponent(home),
                account && account->status == 0 ? trimmingWhitespaceAndNewlines(account->text) : ""}));
  const std::string tool = runtime.programPath();
  gathering.addAnswer("version.txt", tool, {"--version"});
  for (const char* const verb : {"status", "explain"}) {
    gathering.addAnswer(std::string(verb) + ".txt", tool, {verb});
    gathering.addAnswer(std::string(verb) + ".json", tool, {verb, "--json"});
  }
  gathering.addAnswer("diagnose.txt", tool, {"diagnose"});
  gathering.addAnswer("self-check.txt", tool, {"self-check"});
  gathering.addFile(wrapperLogFile(), "karno-wrapper.log");
  gathering.addFile(wrapperOldLogFile(), "karno-wrapper.old.log");
  addSettings(gathering, home);
  addCrashReports(gathering, platform, home);
  return gathering.content;
}

}  // namespace karno::karnoctl
