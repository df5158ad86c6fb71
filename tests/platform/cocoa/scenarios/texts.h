#pragma once
#include <string>
#include <utility>
#include <vector>

namespace karno::test {

struct PromptTexts {
  std::string message;
  std::string explanation;
  std::string continueTitle;
  std::string cancelTitle;
};

PromptTexts englishPrompt();
PromptTexts germanPrompt();

// Texts from a single letter to several screens, in scripts with and without blanks, each with a name.
std::vector<std::pair<std::string, PromptTexts>> promptsOfManyLengths();

}  // namespace karno::test
