#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "fake_platform.h"
#include "log_grammar.h"
#include "record.h"

// What must be true of every life of the launcher, one function each.
namespace karno::simulation {
namespace {

using test::Line;

constexpr double kFlushSeconds = 5;
constexpr double kHandOverSeconds = 10;
constexpr double kMainSecondsMax = 15;
constexpr double kSlackSeconds = 1.5;
constexpr double kWriterSeconds = 0.1;
constexpr const char* kOwnSuite = "it.vantul.karno";

struct LoggedLine {
  const Noted* noted;
  std::string level;  // empty for the console alone
  std::string message;
  const LineKind* kind;
};

using Lines = std::vector<LoggedLine>;

Lines linesOf(const Record& record) {
  Lines lines;
  for (const Noted& one : record.noted) {
    if (one.what != "line") continue;
    const Line line = Line::parse(one.text);
    lines.push_back({&one, line.level, line.message, kindOf(line.level, line.message)});
  }
  return lines;
}

std::ptrdiff_t count(const Lines& lines, std::string_view name) {
  return std::ranges::count_if(
      lines, [&](const auto& one) { return one.kind != nullptr && one.kind->name == name; });
}

bool has(const Lines& lines, std::string_view name) { return count(lines, name) > 0; }

double overlap(const std::vector<std::pair<double, double>>& spans, double from, double to) {
  double sum = 0;
  for (const auto& [begin, end] : spans) sum += std::max(0.0, std::min(end, to) - std::max(begin, from));
  return sum;
}

// The fakes say which of their operations were called on the wrong thread, and what was thrown.
void threadRules(const Record& record, const Lines& lines, Judgement& judgement) {
  for (const Noted& rule : record.of("rule")) judgement.verdicts.push_back({"thread rules", rule.text});
  for (const LoggedLine& line : lines) {
    if (line.kind == nullptr || line.kind->threads.empty()) continue;
    std::string_view rest = line.kind->threads;
    bool isAllowed = false;
    while (!isAllowed && !rest.empty()) {
      const std::size_t bar = std::min(rest.find('|'), rest.size());
      isAllowed = line.noted->thread.starts_with(rest.substr(0, bar));
      rest.remove_prefix(std::min(bar + 1, rest.size()));
    }
    if (!isAllowed)
      judgement.verdicts.push_back({"thread rules", line.message + " on " + line.noted->thread});
  }
}

// What one block logs is a story, whole or up to where it was cut off.
void logGrammar(const Record& record, const Lines& lines, Judgement& judgement) {
  std::map<std::uint64_t, std::vector<const LineKind*>> blocks;
  for (const LoggedLine& line : lines) {
    if (line.kind == nullptr) {
      judgement.verdicts.push_back({"log grammar", "a line in no story: " + line.noted->text});
      return;
    }
    blocks[line.noted->block].push_back(line.kind);
  }
  for (const auto& [block, kinds] : blocks) {
    const bool isCutOff = !record.endedBlocks.contains(block);
    if (const Story* const story = storyOf(kinds, true)) {
      judgement.stories.emplace_back(story->name);
    } else if (!isCutOff || storyOf(kinds, false) == nullptr) {
      std::string told;
      for (const LineKind* kind : kinds) told += std::string(kind->name) + " ";
      judgement.verdicts.push_back({"log grammar", "no story goes: " + told});
    }
  }
}

// The lines of a block stand in the file in their order.
bool isInOrder(const std::vector<std::pair<std::uint64_t, std::size_t>>& places) {
  std::map<std::uint64_t, std::size_t> last;
  return std::ranges::all_of(places, [&](const auto& place) {
    const auto [before, isFirst] = last.emplace(place.first, place.second);
    return isFirst || std::exchange(before->second, place.second) < place.second;
  });
}

// Without faults of the disk the file is the console, but for the line that a rotation costs and for what was
// not yet written when the process ended; with them, nothing is in it that the console has not.
void logFile(const Record& record, const Lines& lines, Judgement& judgement) {
  std::multimap<std::string, std::size_t> places;
  for (std::size_t i = 0; i < record.file.size(); ++i) {
    if (record.file[i].find(fmt::format(" ({}) [", record.processIdentifier)) != std::string::npos)
      places.emplace(record.file[i], i);
  }
  const auto reason = std::ranges::find_if(
      lines, [](const auto& line) { return line.kind != nullptr && line.kind->name == "reason"; });
  const double late = 3 * record.latenessMax + kWriterSeconds + 0.2;
  const double certain = record.end == End::Terminated && reason != lines.end()
                             ? std::min(reason->noted->at, record.endAt - late)
                             : record.endAt - late;
  std::map<std::string, int> times;
  for (const LoggedLine& line : lines) ++times[line.noted->text];
  std::vector<std::pair<std::uint64_t, std::size_t>> found;
  int missing = 0;
  for (const LoggedLine& line : lines) {
    if (line.level.empty()) continue;
    const auto place = places.find(line.noted->text.substr(0, line.noted->text.find('\n')));
    if (place != places.end() && times[line.noted->text] > 1) {
      places.erase(place);  // which of them is which cannot be told
    } else if (place != places.end()) {
      found.emplace_back(line.noted->block, place->second);
      places.erase(place);
    } else if (line.noted->at < certain && !record.isDiskFaulty && record.hasLogFolder &&
               ++missing > record.rotations) {
      judgement.verdicts.push_back({"log file", "a line is missing: " + line.noted->text});
      return;
    }
  }
  if (!places.empty() && !record.isDiskFaulty)
    judgement.verdicts.push_back({"log file", "a line that nobody logged: " + places.begin()->first});
  if (record.rotations < 2 && !record.isDiskFaulty && !isInOrder(found))
    judgement.verdicts.push_back({"log file", "the lines of a thread are out of order"});
}

// Every reason to quit is followed by the end: once the log is flushed and main is free.
void quits(const Record& record, const Lines& lines, Judgement& judgement) {
  const std::vector<Noted> ends = record.of("terminate");
  int reasons = 0;
  for (const LoggedLine& line : lines) {
    if (line.kind == nullptr || line.kind->name != "reason") continue;
    const double since = line.noted->at;
    const double until = ends.empty() ? record.endAt : ends.front().at;
    const double held = overlap(record.alertTimes, since, until) + overlap(record.lateTimes, since, until) +
                        (has(lines, "handing-over") ? kHandOverSeconds : 0);
    const double limit = kFlushSeconds * ++reasons + held + kSlackSeconds + 4 * record.latenessMax;
    if (!record.hasModalAlert && until - since > limit)
      judgement.verdicts.push_back(
          {"a reason is followed by the end", fmt::format("{} at {:.3f} s", line.message, since)});
  }
}

bool waitsForFuse(const Lines& lines) {
  bool waits = false;
  for (const LoggedLine& line : lines) {
    if (line.kind == nullptr) continue;
    if (line.kind->name == "waiting-for-fuse") waits = true;
    if (line.kind->name == "fuse-is-there") waits = false;
  }
  return waits;
}

// The states in which the launcher may be without client, window, alert and work, since its rules demand it.
bool isDemandedRest(const Record& record, const Lines& lines) {
  const bool endedForAnUpdateThatDidNotCome =
      has(lines, "being-updated") || has(lines, "upgrade-ended") || has(lines, "upgrade-abnormal");
  return endedForAnUpdateThatDidNotCome || !record.canUpdaterCheck || record.wasPromptClosedByHand;
}

void neverNothing(const Record& record, const Lines& lines, Judgement& judgement) {
  const bool isThereSomething = record.clientsAlive > 0 || record.hasModalAlert || record.isPromptInFront ||
                                record.isUpdaterAtWork || record.hasHangingWork || waitsForFuse(lines) ||
                                has(lines, "reason");
  if (record.end == End::Running && !isThereSomething && !isDemandedRest(record, lines))
    judgement.verdicts.push_back({"never nothing", "no client, no window, no alert and no work"});
}

// Whether a message asked for a restart before the start itself launched its client: then both do.
bool isRestartedBeforeItsStart(const Lines& lines) {
  bool isRestarting = false;
  for (const LoggedLine& line : lines) {
    if (line.kind == nullptr) continue;
    if (line.kind->name == "restarting") isRestarting = true;
    if (line.kind->name == "launched") return isRestarting;
  }
  return false;
}

void clients(const Record& record, const Lines& lines, Judgement& judgement) {
  const std::vector<Noted> launches = record.of("launch");
  const auto told = static_cast<std::ptrdiff_t>(launches.size());
  if (record.end != End::Crashed &&
      std::abs(count(lines, "launched") - told) > (record.end == End::Running ? 0 : 1))
    judgement.verdicts.push_back(
        {"clients", fmt::format("{} launches, {} told", told, count(lines, "launched"))});
  const bool mayBeTwo = has(lines, "elected") || count(lines, "okay") > 1 || count(lines, "restarting") > 1 ||
                        record.otherLaunchers > 0 || record.areProcessesFaulty ||
                        isRestartedBeforeItsStart(lines);
  for (const Noted& launch : launches) {
    if (!launch.text.ends_with("alive 1") && !mayBeTwo)
      judgement.verdicts.push_back({"clients", "more than one is alive: " + launch.text});
  }
}

void choice(const Record& record, const Choice& known, Judgement& judgement) {
  if (record.areSettingsFaulty) return;
  for (const Noted& one : record.noted) {
    if (one.what == "event" &&
        (one.text.find(" admin ") != std::string::npos || one.text.find(" setting ") != std::string::npos))
      return;  // from here on it may have seen either
    if (one.what != "line" || one.text.find("Startup[CHECK]") == std::string::npos) continue;
    break;
  }
  for (const Noted& launch : record.of("launch")) {
    if (!launch.text.starts_with(modelOfChoice(known) + " "))
      judgement.verdicts.push_back({"the choice", launch.text + " instead of " + modelOfChoice(known)});
  }
}

bool logsOneOf(const Lines& lines, std::uint64_t block, std::initializer_list<std::string_view> names) {
  return std::ranges::any_of(lines, [&](const LoggedLine& line) {
    return line.noted->block == block && line.kind != nullptr &&
           std::ranges::count(names, line.kind->name) > 0;
  });
}

// Settings are written where the choice is made and where the launcher quits before the client ever ran.
void settings(const Record& record, const Lines& lines, Judgement& judgement) {
  std::map<std::string, int> times;
  for (const Noted& write : record.of("write")) {
    const bool isChoice = write.text == std::string(kOwnSuite) + " useFileProviderVerified true" ||
                          write.text.starts_with(std::string(kOwnSuite) + " useFileProvider ");
    const std::string key = write.text.substr(0, write.text.rfind(' '));
    const bool isAllowed =
        isChoice ? ++times[key] == 1 && (record.end == End::Crashed ||
                                         logsOneOf(lines, write.block, {"chosen-admin", "chosen-now"}))
                 : write.text == "standard SUHasLaunchedBefore false" &&
                       logsOneOf(lines, write.block,
                                 {"moved", "not-moved", "move-refused", "pressed-cancel", "not-set-up"});
    if (!isAllowed) judgement.verdicts.push_back({"settings", "written: " + write.text});
  }
}

// Nothing keeps main busy for long but the user.
void mainIsFree(const Record& record, const Lines&, Judgement& judgement) {
  std::map<std::uint64_t, double> begun;
  const auto judgeSpan = [&](double begin, double end) {
    const double busy =
        end - begin - overlap(record.alertTimes, begin, end) - overlap(record.lateTimes, begin, end);
    if (busy > kMainSecondsMax && !record.hasModalAlert)
      judgement.verdicts.push_back({"main is free", fmt::format("a block took {:.1f} s", busy)});
  };
  for (const Noted& one : record.noted) {
    if (one.what == "main begins") begun[one.block] = one.at;
    if (one.what != "main ends") continue;
    judgeSpan(begun[one.block], one.at);
    begun.erase(one.block);
  }
  for (const auto& [block, at] : begun) judgeSpan(at, record.endAt);
}

}  // namespace

std::string modelOfChoice(const Choice& known) {
  const auto& words = known.arguments;
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (words[i] != "-launch") continue;
    if (words[i + 1] == "Karno.app" || words[i + 1] == "Karno(Fuse).app") return words[i + 1];
  }
  bool usesFileProvider = known.isVerified ? known.useFileProvider : known.isFirstStartup;
  if (known.admin.starts_with("text ")) {
    std::string_view word = std::string_view(known.admin).substr(5);
    while (word.starts_with(' ')) word.remove_prefix(1);
    if (word.starts_with('+') || word.starts_with('-')) word.remove_prefix(1);
    while (word.starts_with('0')) word.remove_prefix(1);
    usesFileProvider =
        !word.empty() && std::string_view("YyTt123456789").find(word.front()) != std::string_view::npos;
  }
  return usesFileProvider ? "Karno.app" : "Karno(Fuse).app";
}

std::string traceOf(const Record& record) {
  std::string text;
  for (const Noted& one : record.noted)
    text +=
        fmt::format("{:9.3f}  {:24} #{:<5} {:12} {}\n", one.at, one.thread, one.block, one.what, one.text);
  return text;
}

Judgement judge(const Record& record, const Choice& known) {
  Judgement judgement;
  const Lines lines = linesOf(record);
  for (const auto& oracle :
       {threadRules, logGrammar, logFile, quits, neverNothing, clients, settings, mainIsFree})
    oracle(record, lines, judgement);
  choice(record, known, judgement);
  return judgement;
}

}  // namespace karno::simulation
