#pragma once
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "command_line/verb.h"

// What karnoctl takes, by itself and by what describes it to people and shells.
namespace karno::test {

using Words = std::vector<std::string>;
using WordSet = std::set<std::string>;

// Throws std::runtime_error when there is no such file in the sources.
std::string textOfSource(std::string_view path);

Words linesOf(const std::string& text);

// In the order of the table.
Words verbsOfTool();

// Throws std::out_of_range when there is none of that name. It is not to be run.
command_line::Verb verbOfTool(std::string_view name);

// The options that a verb's help speaks of, and "--help", which every verb takes.
WordSet optionsOfTool(std::string_view verb);

// "log [--follow] ...", as in a usage line.
std::string usageOfTool(std::string_view verb);

// docs/man/karnoctl.1.
class ManualPage {
 public:
  ManualPage();

  // The command lines of the synopsis, without "karnoctl".
  const Words& synopses() const { return synopses_; }

  // The verbs that have a section, in its order.
  const Words& verbs() const { return verbs_; }

  // The options and the other words that the list in a verb's section explains.
  const WordSet& optionsOf(const std::string& verb) const { return options_.at(verb); }
  const Words& wordsOf(const std::string& verb) const { return words_.at(verb); }

 private:
  void readLine(const std::string& line);

  std::string section_;
  std::string verb_;
  Words synopses_;
  Words verbs_;
  std::map<std::string, WordSet> options_;
  std::map<std::string, Words> words_;
};

// src/karnoctl/completions/_karnoctl, by its text: its lists of 'word:description', and the options in the
// branches of its case.
class ZshCompletion {
 public:
  ZshCompletion();

  // Each in the order of the file; "help" is the last verb.
  const Words& verbs() const { return verbs_; }
  const Words& messages() const { return messages_; }

  // Throws std::out_of_range for an unknown verb.
  const std::string& summaryOf(const std::string& verb) const { return summaries_.at(verb); }

  // Those that stand without a verb are under "".
  const WordSet& optionsOf(const std::string& verb) const { return options_.at(verb); }

 private:
  void readLine(const std::string& line);
  void readItem(const std::string& line);

  std::string function_;
  std::string branch_;
  Words verbs_;
  Words messages_;
  std::map<std::string, std::string> summaries_;
  std::map<std::string, WordSet> options_;
};

// What a bash prints, its complaints among it, that runs the script with
// src/karnoctl/completions/karnoctl.bash as $0 and the words as arguments.
Words linesFromBash(const std::string& script, const Words& words = {});

// What that file has bash offer for the last of the words, which are split as readline splits them.
Words offeredByBash(const Words& commandLine);

}  // namespace karno::test
