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
constexpr std::string_view kLinesHere = "    ";

std::string what(const Diagnosis& diagnosis) {
  const LoggedSession& session = *diagnosis.session;
  const LauncherStory& story = session.story;
  std::string text = "Karno " + story.version.value_or("(version unknown)") + ", process " +
                     std::to_string(session.processIdentifier);
  if (story.beginning) text += ", started " + *story.beginning;
  const bool hasQuit = session.hasEnded();
  return text +
         (hasQuit ? ", has quit: " + story.quitReason.value_or("without a reason in the log")
                  : ", as far as the log goes: it " + stateText(story)) +
         ".\n";
}

std::string text(const Diagnosis& diagnosis) {
  std::string text = what(diagnosis);
  if (diagnosis.findings.empty()) text += "The log shows nothing wrong.\n";
  for (const Finding& finding : diagnosis.findings) {
    text += "\n" + std::string(finding.cause->says) +
            (finding.detail.empty() ? "" : " (" + finding.detail + ")") + "\n";
    for (const std::string& line : finding.lines)
      text.append(kLinesHere).append(withoutControlCharacters(line)).append("\n");
    text += std::string(finding.cause->advice) + "\n";
  }
  for (const std::string& note : diagnosis.notes) text += "\n" + note + "\n";
  return text;
}

std::string json(const Diagnosis& diagnosis) {
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
                   {"state", nameOf(session.story.state())},
                   {"quitReason", orNull(session.story.quitReason)},
                   {"causes", causes},
                   {"notes", diagnosis.notes}});
}

// Of the launcher's own log the processes tell whether it runs; another one may be of any computer.
std::optional<bool> runs(const LoggedSession& session, const platform::Platform& platform) {
  const auto launchers = runningLaunchers(platform);
  return std::ranges::any_of(launchers, [&](const RunningLauncher& launcher) {
    return launcher.processIdentifier == session.processIdentifier;
  });
}

int diagnose(const std::optional<std::string>& file, bool asJson, const Context& context) {
  const platform::Platform& platform = context.platform();
  Diagnostician reader;
  const auto take = [&](std::string_view line) { reader.take(line); };
  if (!file) readLogLines(platform.fileReading, wrapperOldLogFile(), take);
  const std::string path = file.value_or(wrapperLogFile());
  const auto error = readLogLines(platform.fileReading, path, take);
  const Diagnosis diagnosis = reader.diagnosis(
      [&](const LoggedSession& session) { return file ? std::nullopt : runs(session, platform); });
  if (!diagnosis.session) {
    context.err << "karnoctl: '" << path << "' "
                << (error ? "cannot be read (" + reasonOf(*error) + ")" : "has no line of a launcher's log")
                << "\n";
    return kExitUnreadable;
  }
  context.out << (asJson ? json(diagnosis) : text(diagnosis));
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
