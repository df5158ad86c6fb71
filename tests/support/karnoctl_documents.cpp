#include "karnoctl_documents.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "karnoctl/command_line.h"
#include "subprocess.h"

namespace karno::test {
namespace {

constexpr std::chrono::seconds kShellLimit{30};

Words wordsOfLine(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

WordSet optionsIn(const std::string& text) {
  static const std::regex option("--[a-z][a-z-]*");
  WordSet options;
  for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found)
    options.insert(found->str());
  return options;
}

std::vector<command_line::Verb> tableOfTool() {
  std::ostringstream nowhere;
  karnoctl::Context context{.out = nowhere, .err = nowhere, .platform = {}, .runtimeCheck = {}};
  return karnoctl::program("", context).verbs;
}

// "Op Fl -lines Ar N" is "[--lines N]" on paper.
std::string rendered(const Words& macros) {
  std::string text;
  bool isFlag = false;
  bool isOptional = false;
  for (const std::string& word : macros) {
    if (word == "Op") {
      isOptional = true;
    } else if (word == "Fl") {
      isFlag = true;
    } else if (word != "Cm" && word != "Ar") {
      text += (text.empty() ? "" : " ") + std::string(isFlag ? "-" : "") + word;
      isFlag = false;
    }
  }
  return isOptional ? "[" + text + "]" : text;
}

}  // namespace

std::string textOfSource(std::string_view path) {
  std::ifstream file(KARNO_SOURCES "/" + std::string(path));
  if (!file) throw std::runtime_error("cannot read " + std::string(path));
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Words linesOf(const std::string& text) {
  Words lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

Words verbsOfTool() {
  Words verbs;
  for (const command_line::Verb& verb : tableOfTool()) verbs.emplace_back(verb.name);
  return verbs;
}

command_line::Verb verbOfTool(std::string_view name) {
  for (const command_line::Verb& verb : tableOfTool()) {
    if (verb.name == name) return verb;
  }
  throw std::out_of_range("karnoctl has no verb " + std::string(name));
}

WordSet optionsOfTool(std::string_view verb) {
  const command_line::Verb found = verbOfTool(verb);
  WordSet options = optionsIn(std::string(found.synopsis) + '\n' + found.help);
  options.insert("--help");
  return options;
}

std::string usageOfTool(std::string_view verb) {
  const std::string_view synopsis = verbOfTool(verb).synopsis;
  return std::string(verb) + (synopsis.empty() ? "" : " ") + std::string(synopsis);
}

ManualPage::ManualPage() {
  for (const std::string& line : linesOf(textOfSource("docs/man/karnoctl.1"))) readLine(line);
}

void ManualPage::readLine(const std::string& line) {
  Words words = wordsOfLine(line);
  if (words.empty() || !words[0].starts_with('.')) return;
  const std::string macro = words[0].substr(1);
  if (macro == "Sh") {
    section_ = line.substr(line.find(' ') + 1);
    verb_.clear();
  } else if (section_ == "SYNOPSIS") {
    words[0] = macro;
    if (macro == "Nm") {
      synopses_.emplace_back();
    } else {
      std::string& synopsis = synopses_.at(synopses_.size() - 1);
      synopsis += (synopsis.empty() ? "" : " ") + rendered(words);
    }
  } else if (section_ == "VERBS" && macro == "Ss") {
    verb_ = words.at(1);
    verbs_.push_back(verb_);
    options_[verb_];
    words_[verb_];
  } else if (section_ == "VERBS" && macro == "It" && words.at(1) == "Fl") {
    options_[verb_].insert("-" + words.at(2));
  } else if (section_ == "VERBS" && macro == "It") {
    words_[verb_].push_back(words.at(2));
  }
}

ZshCompletion::ZshCompletion() {
  for (const std::string& line : linesOf(textOfSource("src/karnoctl/completions/_karnoctl"))) readLine(line);
}

void ZshCompletion::readLine(const std::string& line) {
  static const std::regex function(R"((_[a-z_]+)\(\) \{)");
  static const std::regex branch(R"( +([a-z-]+)\))");
  static const std::regex option(R"((--[a-z-]+)=?\[)");
  std::smatch found;
  if (std::regex_match(line, found, function)) function_ = found[1];
  if (function_ != "_karnoctl") {
    readItem(line);
    return;
  }
  if (std::regex_match(line, found, branch)) {
    branch_ = found[1];
    options_[branch_];
  }
  for (std::sregex_iterator it(line.begin(), line.end(), option), end; it != end; ++it)
    options_[branch_].insert((*it)[1]);
}

void ZshCompletion::readItem(const std::string& line) {
  static const std::regex item(R"([^']*'([a-z-]+):(.*)'\)?)");
  static const std::regex apostrophe(R"('"'"')");
  std::smatch found;
  if (!std::regex_match(line, found, item)) return;
  if (function_ == "_karnoctl_messages") {
    messages_.push_back(found[1]);
    return;
  }
  verbs_.push_back(found[1]);
  summaries_[found[1]] = std::regex_replace(found[2].str(), apostrophe, "'");
}

Words linesFromBash(const std::string& script, const Words& words) {
  Words command{"bash", "--norc", "--noprofile",
                "-c",   script,   KARNO_SOURCES "/src/karnoctl/completions/karnoctl.bash"};
  command.insert(command.end(), words.begin(), words.end());
  return linesOf(runCommand(command, kShellLimit).output);
}

Words offeredByBash(const Words& commandLine) {
  return linesFromBash(
      "source \"$0\"\n"
      "COMP_WORDS=(\"$@\")\n"
      "COMP_CWORD=$(($# - 1))\n"
      "_karnoctl\n"
      "for offer in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$offer\"; done\n",
      commandLine);
}

}  // namespace karno::test
