#include "release_document.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace karno::test {
namespace {

constexpr std::chrono::seconds kBlockLimit{100};

std::string documentIn(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

std::string replaced(std::string text, const std::string& words, const std::string& others) {
  for (std::size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + others.size()))
    text.replace(at, words.size(), others);
  return text;
}

std::string quoted(const std::string& text) { return "'" + replaced(text, "'", "'\\''") + "'"; }

}  // namespace

ReleaseDocument::ReleaseDocument(const std::filesystem::path& document, std::filesystem::path sources,
                                 std::map<std::string, std::string> environment)
    : sources_(std::move(sources)), environment_(std::move(environment)) {
  const std::string text = documentIn(document);
  const std::regex block("\n *```sh\n *(# [^\n]*\n)?([^`]*)\n *```");
  for (std::sregex_iterator found(text.begin(), text.end(), block), end; found != end; ++found) {
    const std::string comment = (*found)[1].str();
    blocks_.push_back(
        {.title = comment.empty() ? "a block without a name" : comment.substr(2, comment.size() - 3),
         .commands = (*found)[2].str()});
  }
}

std::vector<std::string> ReleaseDocument::shellFor(const std::string& title) {
  const auto block = std::ranges::find(blocks_, title, &Block::title);
  if (block == blocks_.end()) throw std::runtime_error("no block \"" + title + "\"");
  block->isTyped = true;
  std::string commands = block->commands;
  for (const auto& [variable, value] : values_)
    commands = std::regex_replace(commands, std::regex("\\b" + variable + "=\\S*"), variable + "=" + value);
  for (const auto& [words, others] : words_) commands = replaced(commands, words, others);

  std::string script = "cd " + quoted(sources_) + "\n";
  for (const auto& [name, value] : environment_) script += "export " + name + "=" + quoted(value) + "\n";
  // What one block sets the next one has, as in one shell.
  script += "others= && others=$(compgen -v) && touch .variables && . ./.variables && set -e -o pipefail\n" +
            commands + "\ncd " + quoted(sources_) +
            "\nfor name in $(compgen -v | grep -vxF \"$others\"); do declare -p $name; done >.variables\n";
  return {"bash", "-c", script};
}

std::string ReleaseDocument::type(const std::string& title) {
  const CommandResult result = runCommand(shellFor(title), kBlockLimit);
  if (result.status != 0) throw std::runtime_error(title + ": " + result.output);
  return result.output;
}

std::unique_ptr<Subprocess> ReleaseDocument::typeElsewhere(const std::string& title,
                                                           const std::filesystem::path& output) {
  return std::make_unique<Subprocess>(shellFor(title), output);
}

std::vector<std::string> ReleaseDocument::untyped() const {
  std::vector<std::string> titles;
  for (const Block& block : blocks_) {
    const bool isForAMac = block.title.starts_with("On a Mac") || block.title.starts_with("For a Mac");
    if (!isForAMac && !block.isTyped) titles.push_back(block.title);
  }
  return titles;
}

}  // namespace karno::test
