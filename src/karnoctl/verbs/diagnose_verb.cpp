#include <fmt/format.h>

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

void printText(const Diagnosis& diagnosis, std::ostream& out) {
  const LauncherStory& story = diagnosis.session->story;
  const bool hasQuit = diagnosis.session->hasEnded();
  const std::string_view fate = hasQuit           ? ", has quit: "
                                : !diagnosis.runs ? ". What it was at last: "
                                : *diagnosis.runs ? ", runs. What it is at: "
                                                  : ", has ended without a word. What it was at: ";
  std::string text = fmt::format(
      "Karno {}, process {}{}{}{}\n", story.version.value_or("(version unknown)"),
      diagnosis.session->processIdentifier, story.beginning ? ", started " + *story.beginning : "", fate,
      hasQuit ? story.quitReason.value_or("without a reason in the log") : stateText(story));
  if (diagnosis.findings.empty()) text += "The log shows nothing wrong.\n";
  for (const auto& [cause, detail, lines] : diagnosis.findings) {
    text += fmt::format("\n{}\n", cause->says);
    if (!detail.empty()) text += "(" + detail + ")\n";
    for (const std::string& line : lines) text += "    " + line + "\n";
    text += fmt::format("{}\n", cause->advice);
  }
  for (const std::string& note : diagnosis.notes) text += "\nNote: " + note + "\n";
  LogPrinter(out, {.toTerminal = true}).print(text);
}

void printJson(const Diagnosis& diagnosis, std::ostream& out) {
  const LoggedSession& session = *diagnosis.session;
  Json causes = Json::array();
  for (const auto& [cause, detail, lines] : diagnosis.findings) {
    causes.push_back({{"name", cause->name},
                      {"says", cause->says},
                      {"detail", detail.empty() ? Json() : Json(detail)},
                      {"advice", cause->advice},
                      {"lines", lines}});
  }
  out << jsonText({{"process", session.processIdentifier},
                   {"runningVersion", orNull(session.story.version)},
                   {"beginning", orNull(session.story.beginning)},
                   {"runs", orNull(diagnosis.runs)},
                   {"state", nameOf(session.story.state())},
                   {"quitReason", orNull(session.story.quitReason)},
                   {"causes", causes},
                   {"notes", diagnosis.notes}});
}

// Of the launcher's own log the processes tell whether it runs; another one may be of any computer.
int diagnose(const std::optional<std::string>& file, bool asJson, const Context& context) {
  const platform::Platform& platform = context.platform();
  Diagnostician reader;
  const auto take = [&](std::string_view line) { reader.take(line); };
  if (!file) readLogLines(platform.fileReading, wrapperOldLogFile(), take);
  const std::string path = file.value_or(wrapperLogFile());
  const ReadingOfLines read = readLogLines(platform.fileReading, path, take);
  const auto isRunning = [&](std::int32_t process) -> std::optional<bool> {
    if (file) return std::nullopt;
    return std::ranges::count(runningLaunchers(platform), process, &RunningLauncher::processIdentifier) > 0;
  };
  Diagnosis diagnosis = reader.diagnosis(isRunning, platform.clock.now());
  const std::string error = read.error ? reasonOf(*read.error) : "";
  if (!diagnosis.session) {
    context.err << "karnoctl: '" << path
                << (read.error ? "' cannot be read (" + error + ")\n"
                               : "' has no line of a launcher's log\n");
    return kExitUnreadable;
  }
  std::vector<std::string>& notes = diagnosis.notes;
  if (read.error) notes.push_back("'" + path + "' cannot be read to its end: " + error + ".");
  if (read.isOfEndOnly) notes.push_back("Of '" + path + "' only the last 32 MB were read.");
  if (read.endsWithinLine) notes.push_back("'" + path + "' ends within a line, which does not count.");
  (asJson ? printJson : printText)(diagnosis, context.out);
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
