#include "karnoctl/verbs/self_check_verb.h"

#include <cerrno>
#include <ostream>
#include <variant>

#include "karnoctl/programs/program_file.h"
#include "karnoctl/self_check/self_check.h"
#include "karnoctl/self_check/self_check_system.h"
#include "karnoctl/verbs/verbs.h"
#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

struct SelfCheckOptions {
  bool help = false;
  bool asJson = false;
  std::string bundle;  // empty for the one that this program lies in
};

std::string selfCheckHelp() {
  return "Checks the launcher's bundle, the one that this karnoctl lies in or BUNDLE: its property lists,\n"
         "programs, both builds of the client, the texts in all languages and, on a Mac, that it is signed "
         "and\n"
         "can be updated; then, whether this system has all that the launcher asks of it. Says each thing "
         "that\n"
         "is wrong, and what it costs, in one sentence. Nothing is started or changed.\n"
         "\n"
         "Options:\n"
         "  --json   the same for scripts\n"
         "\n"
         "Exit status: 0 nothing is wrong, 1 something is.\n";
}

UsageError misuse(std::string text) { return {std::move(text), "self-check"}; }

std::variant<SelfCheckOptions, UsageError> parse(std::span<const std::string> arguments) {
  SelfCheckOptions options;
  for (const std::string& word : arguments) {
    if (word == "--help") {
      options.help = true;
    } else if (word == "--json") {
      options.asJson = true;
    } else if (word.starts_with('-')) {
      return misuse("unknown option '" + word + "'");
    } else if (word.empty()) {
      return misuse("the path of the bundle is empty");
    } else if (!options.bundle.empty()) {
      return misuse("self-check takes one bundle at most, not '" + word + "' as well");
    } else {
      options.bundle = word;
    }
  }
  return options;
}

// X.app of X.app/Contents/MacOS/karnoctl; empty for a program that lies elsewhere.
std::string bundleAround(const std::string& program) {
  const std::string programs = deletingLastPathComponent(program);
  const std::string contents = deletingLastPathComponent(programs);
  const bool isInBundle = lastPathComponent(programs) == "MacOS" && lastPathComponent(contents) == "Contents";
  return isInBundle ? deletingLastPathComponent(contents) : std::string();
}

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
  const SelfCheckFindings& found = bundle.findings();
  for (const std::string& sentence : found.wrong) context.out << sentence << '\n';
  for (const std::string& sentence : found.notes) context.out << "Note: " << sentence << '\n';
  // An exception that is not caught ends this process.
  context.out.flush();
  const std::size_t before = found.wrong.size();
  checkExceptions(bundle);
  if (found.wrong.size() > before) context.out << found.wrong.back() << '\n';
  if (found.wrong.empty()) context.out << closingSentence(bundle) << '\n';
  return found.wrong.empty() ? kExitOk : kExitFailed;
}

int reportAsJson(const CheckedBundle& bundle, Context& context) {
  checkExceptions(bundle);
  context.out << findingsJson(bundle);
  return bundle.findings().wrong.empty() ? kExitOk : kExitFailed;
}

int check(const std::string& path, bool asJson, Context& context) {
  const platform::Platform& platform = context.platform();
  const platform::RuntimeCheck& runtime = context.runtimeCheck();
  SelfCheckFindings findings;
  const auto own = programAtPath(platform.fileReading, runtime.programPath());
  if (!own) {
    context.err << "karnoctl: cannot read its own program: " << reasonOf(own.error()) << '\n';
    return kExitFailed;
  }
  const CheckedBundle bundle(platform, runtime, own.value(), path, findings);
  if (const std::string obstacle = obstacleTo(platform, path); !obstacle.empty()) {
    bundle.wrong(obstacle);
  } else {
    checkBundleAndSystem(bundle);
  }
  return asJson ? reportAsJson(bundle, context) : report(bundle, context);
}

int runSelfCheck(std::span<const std::string> arguments, Context& context) {
  const auto parsed = parse(arguments);
  if (const auto* error = std::get_if<UsageError>(&parsed)) return reportUsageError(*error, context);
  const SelfCheckOptions& options = *std::get_if<SelfCheckOptions>(&parsed);
  if (options.help) {
    printVerbHelp(*findVerb("self-check"), context.out);
    return kExitOk;
  }
  const platform::Platform& platform = context.platform();
  if (!options.bundle.empty()) {
    const platform::FileManager& files = platform.fileManager;
    return check(files.standardising(files.resolvingSymbolicLinks(options.bundle)), options.asJson, context);
  }
  const std::string own = bundleAround(context.runtimeCheck().programPath());
  if (own.empty()) {
    return reportUsageError(misuse("which bundle? (this karnoctl does not lie in one)"), context);
  }
  return check(own, options.asJson, context);
}

}  // namespace

Verb selfCheckVerb() {
  return {.name = "self-check",
          .synopsis = "[--json] [BUNDLE]",
          .summary = "say what is wrong with the launcher's bundle",
          .help = selfCheckHelp,
          .run = runSelfCheck};
}

}  // namespace karno::karnoctl
