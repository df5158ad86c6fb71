#include <cerrno>
#include <ostream>

#include "command_line/arguments.h"
#include "karnoctl/self_check/self_check.h"
#include "karnoctl/verbs/running_launchers.h"
#include "karnoctl/verbs/verbs.h"

namespace karno::karnoctl {
namespace {

// What stands in the way of looking into the bundle at all; empty when nothing does.
std::string obstacleTo(const platform::Platform& platform, const std::string& path) {
  const auto file = platform.fileReading.open(path);
  if (file) return path + " is a file, and no bundle.";
  const platform::Error& error = file.error();
  if (error == platform::Error::posix(EISDIR)) return {};
  if (error == platform::Error::posix(ENOENT)) return "There is nothing at " + path + ".";
  return path + " cannot be read (" + reasonOf(error) + ").";
}

int report(const CheckedBundle& bundle, Context& context) {
  const SelfCheckFindings& found = bundle.findings;
  for (const std::string& sentence : found.wrong) context.out << sentence << '\n';
  for (const std::string& sentence : found.notes) context.out << "Note: " << sentence << '\n';
  // An exception that is not caught ends this process.
  context.out.flush();
  const std::size_t before = found.wrong.size();
  checkExceptions(bundle);
  if (found.wrong.size() > before) context.out << found.wrong.back() << '\n';
  if (found.wrong.empty()) context.out << closingSentence(bundle) << '\n';
  return found.wrong.empty() ? command_line::kExitOk : command_line::kExitFailed;
}

int reportAsJson(const CheckedBundle& bundle, Context& context) {
  checkExceptions(bundle);
  context.out << findingsJson(bundle);
  return bundle.findings.wrong.empty() ? command_line::kExitOk : command_line::kExitFailed;
}

int check(const std::string& path, bool asJson, Context& context) {
  const platform::Platform& platform = context.platform();
  const platform::RuntimeCheck& runtime = context.runtimeCheck();
  SelfCheckFindings findings;
  const auto own = programAtPath(platform.fileReading, runtime.programPath());
  if (!own) {
    context.err << "karnoctl: cannot read its own program: " << reasonOf(own.error()) << '\n';
    return command_line::kExitFailed;
  }
  const CheckedBundle bundle{.platform = platform,
                             .runtime = runtime,
                             .ownProgram = own.value(),
                             .path = path,
                             .findings = findings};
  if (const std::string obstacle = obstacleTo(platform, path); !obstacle.empty()) {
    bundle.wrong(obstacle);
  } else {
    checkBundleAndSystem(bundle);
  }
  return asJson ? reportAsJson(bundle, context) : report(bundle, context);
}

std::string bundleFor(const std::optional<std::string>& said, Context& context) {
  const platform::FileManager& files = context.platform().fileManager;
  if (said) return files.standardising(files.resolvingSymbolicLinks(*said));
  return bundlePathOf(context.runtimeCheck().programPath()).value_or("");
}

int runSelfCheck(const command_line::Arguments& arguments, Context& context) {
  if (arguments.word() == "") throw command_line::UsageError("the path of the bundle is empty");
  const std::string bundle = bundleFor(arguments.word(), context);
  if (bundle.empty()) throw command_line::UsageError("which bundle? (this karnoctl does not lie in one)");
  return check(bundle, arguments.has("--json"), context);
}

}  // namespace

command_line::Verb selfCheckVerb(Context& context) {
  return {
      .name = "self-check",
      .synopsis = "[--json] [BUNDLE]",
      .summary = "say what is wrong with the launcher's bundle",
      .help =
          R"(Checks the launcher's bundle, the one that this karnoctl lies in or BUNDLE: its property lists,
programs, both builds of the client, the texts in all languages and, on a Mac, that it is signed and
can be updated; whether the system trusts it: signature, Gatekeeper, quarantine, owner and lowest
macOS; then, whether this system has all that the launcher asks of it. Says each thing that is wrong,
and what it costs, in one sentence; what only ought to be known follows as a note. Nothing of the
bundle is started, and nothing is changed.

Options:
  --json   the same for scripts

Exit status: 0 nothing is wrong, 1 something is.
)",
      .flags = {"--json"},
      .word = "bundle",
      .run = [&context](const auto& arguments) { return runSelfCheck(arguments, context); }};
}

}  // namespace karno::karnoctl
