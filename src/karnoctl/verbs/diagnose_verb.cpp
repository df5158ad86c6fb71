#include <algorithm>
#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/diagnose/diagnosis.h"
#include "karnoctl/error_text.h"
#include "karnoctl/json_text.h"
#include "karnoctl/log/line_reading.h"
#include "karnoctl/log/log_printer.h"
#include "karnoctl/verbs/running_launchers.h"
#include "karnoctl/verbs/status_text.h"
#include "karnoctl/verbs/verbs.h"
#include "log/log_files.h"

namespace karno::karnoctl {
namespace {

constexpr int kExitUnreadable = 2;
constexpr std::string_view kQuotation = "    ";

// What became of the launcher, to follow its name.
std::string fateText(const Diagnosis& diagnosis) {
  const LauncherStory& story = diagnosis.session->story;
  if (diagnosis.session->hasEnded()) {
    const std::string reason = story.quitReason.value_or("without a reason in the log");
    return ", has quit: " + withoutControlCharacters(reason);
  }
  const std::string state = withoutControlCharacters(stateText(story));
  if (diagnosis.runs == true) return ", runs. What it is at: " + state;
  return (diagnosis.runs ? ", has ended without a word. What it was at: " : ". What it was at last: ") +
         state;
}

std::string sessionText(const Diagnosis& diagnosis) {
  const LauncherStory& story = diagnosis.session->story;
  return "Karno " + withoutControlCharacters(story.version.value_or("(version unknown)")) + ", process " +
         std::to_string(diagnosis.session->processIdentifier) +
         (story.beginning ? ", started " + withoutControlCharacters(*story.beginning) : "") +
         fateText(diagnosis) + "\n";
}

std::string findingText(const Finding& finding) {
  std::string text = "\n" + std::string(finding.cause->says) + "\n";
  if (!finding.detail.empty()) text += "(" + withoutControlCharacters(finding.detail) + ")\n";
  for (const std::string& line : finding.lines)
    text.append(kQuotation).append(withoutControlCharacters(line)).append("\n");
  return text.append(finding.cause->advice).append("\n");
}

std::string diagnosisText(const Diagnosis& diagnosis) {
  std::string text = sessionText(diagnosis);
  if (diagnosis.findings.empty()) text += "The log shows nothing wrong.\n";
  for (const Finding& finding : diagnosis.findings) text += findingText(finding);
  for (const std::string& note : diagnosis.notes) text += "\nNote: " + note + "\n";
  return text;
}

std::string diagnosisJson(const Diagnosis& diagnosis) {
  const LoggedSession& session = *diagnosis.session;
  Json causes = Json::array();
  for (const Finding& finding : diagnosis.findings) {
    causes.push_back({{"name", finding.cause->name},
                      {"says", finding.cause->says},
                      {"detail", finding.detail.empty() ? Json() : Json(finding.detail)},
                      {"advice", finding.cause->advice},
                      {"lines", finding.lines}});
  }
  return jsonText({{"process", session.processIdentifier},
                   {"runningVersion", orNull(session.story.version)},
                   {"beginning", orNull(session.story.beginning)},
                   {"runs", orNull(diagnosis.runs)},
                   {"state", nameOf(session.story.state())},
                   {"quitReason", orNull(session.story.quitReason)},
                   {"causes", causes},
                   {"notes", diagnosis.notes}});
}

bool isRunningLauncher(const LoggedSession& session, const platform::Platform& platform) {
  const auto launchers = runningLaunchers(platform);
  return std::ranges::count(launchers, session.processIdentifier, &RunningLauncher::processIdentifier) > 0;
}

// How the file itself limits what can be told.
void addNotesOn(const ReadingOfLines& read, const std::string& path, std::vector<std::string>& notes) {
  if (read.error) notes.push_back("'" + path + "' cannot be read to its end: " + reasonOf(*read.error) + ".");
  if (read.isOfEndOnly) notes.push_back("Of '" + path + "' only the last 32 MB were read.");
  if (read.endsWithinLine) notes.push_back("'" + path + "' ends within a line, which does not count.");
}

// Of the launcher's own log the processes tell whether it runs; another one may be of any computer.
int diagnose(const std::optional<std::string>& file, bool asJson, const Context& context) {
  const platform::Platform& platform = context.platform();
  Diagnostician reader;
  const auto take = [&](std::string_view line) { reader.take(line); };
  if (!file) readLogLines(platform.fileReading, wrapperOldLogFile(), take);
  const std::string path = file.value_or(wrapperLogFile());
  const ReadingOfLines read = readLogLines(platform.fileReading, path, take);
  const auto isRunning = [&](const LoggedSession& session) {
    return file ? std::nullopt : std::optional(isRunningLauncher(session, platform));
  };
  Diagnosis diagnosis = reader.diagnosis(isRunning, platform.clock.now());
  if (!diagnosis.session) {
    const std::string why =
        read.error ? "cannot be read (" + reasonOf(*read.error) + ")" : "has no line of a launcher's log";
    context.err << "karnoctl: '" << path << "' " << why << "\n";
    return kExitUnreadable;
  }
  addNotesOn(read, path, diagnosis.notes);
  context.out << (asJson ? diagnosisJson(diagnosis) : diagnosisText(diagnosis));
  return diagnosis.findings.empty() ? command_line::kExitOk : command_line::kExitFailed;
}

}  // namespace

command_line::Verb diagnoseVerb(Context& context) {
  return {.name = "diagnose",
          .synopsis = "[LOG] [--json]",
          .summary = "say what went wrong in the last session, from the log",
          .help =
              R"(Reads the launcher's log, both files of it, or the file LOG that somebody sent, and says what
happened in the last session that it tells of and what is wrong: the most likely cause first, with
the lines that show it and what to do. What the log does not tell is said. Of a file beyond 32 MB
the end is read.

Options:
  --json   the same for scripts

Exit status: 0 nothing is wrong, 1 there is something to do, 2 there is no log, or none of a launcher.
)",
          .flags = {"--json"},
          .word = "LOG",
          .run = [&context](const auto& arguments) {
            return diagnose(arguments.word(), arguments.has("--json"), context);
          }};
}

}  // namespace karno::karnoctl
