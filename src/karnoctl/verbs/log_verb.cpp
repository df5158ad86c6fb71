#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "command_line/arguments.h"
#include "karnoctl/log/log_follower.h"
#include "karnoctl/log/log_printer.h"
#include "karnoctl/log/log_tail.h"
#include "karnoctl/verbs/verbs.h"
#include "log/log_files.h"

namespace karno::karnoctl {
namespace {

using OpenFile = std::unique_ptr<platform::ReadableFile>;

constexpr std::uint64_t kAllLines = ~std::uint64_t{0};
constexpr std::uint64_t kUsualLines = 50;
constexpr double kLookSeconds = 0.25;

struct LogOptions {
  std::uint64_t lines = kUsualLines;
  bool follow = false;
  bool colours = false;
};

std::uint64_t linesIn(const std::string& value) {
  if (value == "all") return kAllLines;
  const std::optional<std::uint64_t> number = command_line::numberIn(value);
  if (!number) throw command_line::UsageError("'" + value + "' is no number of lines");
  return *number;
}

bool wantsColours(const std::string& when, const Context& context) {
  if (when == "auto") return context.outputWantsColours;
  if (when != "always" && when != "never")
    throw command_line::UsageError("--color takes auto, always or never, not '" + when + "'");
  return when == "always";
}

// Null when there is no such file or it cannot be read.
OpenFile openIfThere(const platform::FileReading& reading, const std::string& path) {
  auto file = reading.open(path);
  return file ? std::move(file.value()) : nullptr;
}

Tail tailOf(const OpenFile& file, std::uint64_t linesMax) {
  if (!file) return {};
  const auto tail = findTail(*file, linesMax);
  return tail ? tail.value() : Tail{};
}

// Up to the end that was found, so that what is logged meanwhile is left for those who follow.
void printTail(const OpenFile& file, const Tail& tail, LogPrinter& printer) {
  for (std::uint64_t offset = tail.offset; offset < tail.end;) {
    const auto piece =
        file->read(offset, static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, tail.end - offset)));
    if (!piece || piece.value().empty()) return;
    printer.print(piece.value());
    offset += piece.value().size();
  }
}

// Ends only when nothing can be printed any more, or with the process.
void follow(LogFollower follower, LogPrinter& printer, Context& context) {
  platform::Dispatch& dispatch = context.platform().dispatch;
  while (context.out) {
    const std::string text = follower.newText();
    if (follower.startedAnew()) printer.endLine();
    if (text.empty()) {
      dispatch.sleep(kLookSeconds);
      continue;
    }
    printer.print(text);
    context.out.flush();
  }
}

int showLog(const LogOptions& options, Context& context) {
  const platform::FileReading& reading = context.platform().fileReading;
  const std::string path = wrapperLogFile();
  OpenFile file = openIfThere(reading, path);
  const OpenFile oldFile = openIfThere(reading, wrapperOldLogFile());
  if (!file && !oldFile && !options.follow) {
    context.err << "karnoctl: there is no log at '" << path << "'\n";
    return command_line::kExitFailed;
  }
  if (!file && options.follow) context.err << "karnoctl: waiting for a log at '" << path << "'\n";

  LogPrinter printer(context.out, {.toTerminal = context.outputIsTerminal, .colours = options.colours});
  const Tail tail = tailOf(file, options.lines);
  const Tail oldTail = tailOf(oldFile, options.lines - std::min(options.lines, tail.lines));
  printTail(oldFile, oldTail, printer);
  printer.endLine();
  printTail(file, tail, printer);
  if (!options.follow) {
    printer.endLine();
    return command_line::kExitOk;
  }
  context.out.flush();
  follow(LogFollower(reading, path, std::move(file), tail.end), printer, context);
  return command_line::kExitFailed;
}

}  // namespace

command_line::Verb logVerb(Context& context) {
  const auto run = [&context](const command_line::Arguments& arguments) {
    const auto lines = arguments.value("--lines");
    return showLog({.lines = lines ? linesIn(*lines) : kUsualLines,
                    .follow = arguments.has("--follow"),
                    .colours = wantsColours(arguments.value("--color").value_or("auto"), context)},
                   context);
  };
  return {
      .name = "log",
      .synopsis = "[--follow] [--lines N] [--color WHEN]",
      .summary = "show what the launcher has logged",
      .help =
          R"(Shows the end of the launcher's log. Where the log file has fewer lines than asked for, the file
before it is shown first.

Options:
  --lines N      how many lines (50), or all
  --follow       go on with what the launcher logs from now on, until Ctrl-C (exit status 130)
  --color WHEN   levels in colour: auto (on a terminal, unless NO_COLOR is set), always, never
)",
      .options = {"--lines", "--color"},
      .flags = {"--follow"},
      .run = run};
}

}  // namespace karno::karnoctl
