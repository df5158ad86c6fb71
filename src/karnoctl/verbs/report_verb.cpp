#include <fmt/format.h>

#include <cerrno>
#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/error_text.h"
#include "karnoctl/log/log_printer.h"
#include "karnoctl/report/report_content.h"
#include "karnoctl/self_check/system_tools.h"
#include "karnoctl/verbs/verbs.h"
#include "log/date_texts.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

// Why there is no archive at the path; empty when there is. It lies beside under a hidden name until it is
// whole; gzip keeps the mode.
std::string failureToWrite(const std::string& path, const std::string& archive, const Context& context) {
  platform::Platform& platform = context.platform();
  const auto there = platform.fileReading.open(path);
  if (!there && there.error() != platform::Error::posix(ENOENT)) return reasonOf(there.error());

  const std::string name = deletingLastPathComponent(path) + "/." + lastPathComponent(path) + ".partial";
  if (const auto error = context.writePrivateFile(name, archive)) return reasonOf(*error);
  const auto packed = askTool(platform.commands, "/usr/bin/gzip", {"-nf", name});
  std::string failure = !packed ? "gzip cannot be run"
                        : packed->status != 0
                            ? withoutControlCharacters(trimmingWhitespaceAndNewlines(packed->text))
                            : "";
  if (failure.empty()) {
    if (const auto error = platform.files.move(name + ".gz", path)) failure = reasonOf(*error);
  }
  if (!failure.empty()) {
    platform.files.remove(name);
    platform.files.remove(name + ".gz");
  }
  return failure;
}

std::string outputPath(const std::optional<std::string>& said, platform::Platform& platform) {
  const std::string path =
      said.value_or("karno-report-" + timestampForDate(platform.clock.now()) + ".tar.gz");
  const std::string folder = path.find('/') == std::string::npos ? "." : deletingLastPathComponent(path);
  platform::FileManager& files = platform.fileManager;
  return files.standardising(files.resolvingSymbolicLinks(folder) + "/" + lastPathComponent(path));
}

int report(const std::optional<std::string>& said, const Context& context) {
  platform::Platform& platform = context.platform();
  const std::string path = outputPath(said, platform);
  const ReportContent content = gatherReport(platform, context.runtimeCheck());
  const std::string archive = tarArchive("karno-report", content.files, platform.clock.now());
  if (const std::string failure = failureToWrite(path, archive, context); !failure.empty()) {
    context.err << fmt::format("karnoctl: cannot write '{}': {}\n", withoutControlCharacters(path), failure);
    return command_line::kExitFailed;
  }
  context.out << "In the report:\n";
  for (const auto& [name, text] : content.files)
    context.out << fmt::format("  {} ({} bytes)\n", withoutControlCharacters(name), text.size());
  context.out << "Not in it:\n";
  for (const std::string& line : content.leftOut)
    context.out << "  " << withoutControlCharacters(line) << '\n';
  context.out << fmt::format(
      "Your home folder is \"~\" in it, and your name \"USER\". Nothing was sent: {}\n", path);
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb reportVerb(Context& context) {
  return {
      .name = "report",
      .synopsis = "[--output FILE]",
      .summary = "put what support wants to see into one file",
      .help =
          R"(Puts status, explanation, diagnosis, self-check, both log files, settings, managed values and the
crash reports of the last 30 days into one archive, in which your home folder is "~" and your name
"USER", and says what is in it and what is not. Nobody but you may read it, and nothing leaves
this machine.

Options:
  --output FILE   where to (karno-report-TIME.tar.gz in this folder); a file there is replaced
)",
      .options = {"--output"},
      .run = [&context](const auto& arguments) { return report(arguments.value("--output"), context); }};
}

}  // namespace karno::karnoctl
