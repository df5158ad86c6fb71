#include "command_line/program.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <exception>
#include <ostream>

#include "command_line/arguments.h"
#include "command_line/closest_word.h"
#include "platform/text/one_line.h"

namespace karno::command_line {
namespace {

// Done by the table's reader itself.
Verb helpVerb() {
  return {.name = "help",
          .synopsis = "[VERB]",
          .summary = "say how a verb is used",
          .help = "Says how VERB is used, or lists the verbs.\n",
          .run = {}};
}

// What was typed may be anything: it is shown in one line that a terminal bears.
std::string line(std::string_view text) {
  constexpr std::size_t kBytesMax = 300;
  const std::string visible = platform::inOneLine(text.substr(0, kBytesMax));
  return text.size() > kBytesMax ? visible + "..." : visible;
}

// One run of a program.
class Run {
 public:
  Run(const Program& program, std::ostream& out, std::ostream& err)
      : program_(program), out_(out), err_(err) {}

  int dispatch(std::span<const std::string> arguments) {
    if (arguments.empty()) throw UsageError("what is to be done? (no verb given)");
    const std::string& first = arguments.front();
    const auto rest = arguments.subspan(1);
    const bool isHelp = first == "--help" || first == "-h";
    const bool isVersion = first == "--version" || first == "-V";
    if ((isHelp || isVersion) && !rest.empty()) throw UsageError(first + " stands alone");
    if (isHelp || first == "help") return help(rest);
    if (isVersion) return printVersion();
    if (first.starts_with('-')) {
      constexpr std::array<std::string_view, 2> kKnown{"--help", "--version"};
      throw UsageError("unknown option '" + first + "'" + suggestion(first, kKnown));
    }
    return runVerb(verbNamed(first), rest);
  }

  int reportUsageError(std::string_view text, std::string_view advice) {
    err_ << program_.name << ": " << line(text) << "\nTry \"" << program_.name << ' ' << advice << "\".\n";
    return kExitUsage;
  }

 private:
  int help(std::span<const std::string> arguments) {
    if (arguments.size() > 1) throw UsageError("help takes one verb at most");
    if (arguments.empty()) return printHelp();
    const std::string& name = arguments[0];
    if (name == "help" || name == "--help" || name == "-h") return printHelp(helpVerb());
    if (name == "--version" || name == "-V") return printVersion();
    return printHelp(verbNamed(name));
  }

  int printVersion() {
    out_ << program_.name << ' ' << program_.version << '\n';
    return kExitOk;
  }

  int printHelp() {
    out_ << fmt::format(
        "Usage: {0} VERB [ARGUMENT...]\n"
        "       {0} help [VERB]\n"
        "       {0} --help | --version\n"
        "\n"
        "{1}\n"
        "\n"
        "Verbs:\n",
        program_.name, program_.purpose);
    for (const Verb& verb : program_.verbs) printLine(verb.name, verb.summary);
    printLine(helpVerb().name, helpVerb().summary);
    out_ << "\nExit status: " << program_.exitStatuses << ", 64 wrong usage.\n";
    return kExitOk;
  }

  void printLine(std::string_view verb, std::string_view summary) {
    out_ << fmt::format("  {:<10} {}\n", verb, summary);
  }

  int printHelp(const Verb& verb) {
    out_ << "Usage: " << program_.name << ' ' << verb.name << (verb.synopsis.empty() ? "" : " ")
         << verb.synopsis << "\n\n"
         << verb.help;
    return kExitOk;
  }

  const Verb& verbNamed(const std::string& name) const {
    std::vector<std::string_view> names{"help"};
    for (const Verb& verb : program_.verbs) {
      if (verb.name == name) return verb;
      names.push_back(verb.name);
    }
    throw UsageError("unknown verb '" + name + "'" + suggestion(name, names));
  }

  int runVerb(const Verb& verb, std::span<const std::string> rest) {
    try {
      const Arguments arguments(verb, rest);
      if (arguments.wantsHelp()) return printHelp(verb);
      return arguments.wantsVersion() ? printVersion() : verb.run(arguments);
    } catch (const UsageError& error) {
      return reportUsageError(error.what(), fmt::format("help {}", verb.name));
    }
  }

  const Program& program_;
  std::ostream& out_;
  std::ostream& err_;
};

}  // namespace

int run(const Program& program, std::span<const std::string> arguments, std::ostream& out,
        std::ostream& err) {
  Run running(program, out, err);
  try {
    const int status = running.dispatch(arguments);
    if (out.flush()) return status;
    err << program.name << ": cannot write the output\n";
  } catch (const UsageError& error) {
    return running.reportUsageError(error.what(), "--help");
  } catch (const std::exception& error) {
    err << program.name << ": " << error.what() << '\n';
  }
  return kExitFailed;
}

}  // namespace karno::command_line
