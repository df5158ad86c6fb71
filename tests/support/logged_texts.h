#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace karno::test {

// The literal that a call of the log in the sources begins with.
struct LoggedText {
  std::string level;    // as the log prints it
  std::string pattern;  // "{}" stands for what is put in
};

// Of src/, calls with a literal of their own only; without those of folders that begin so.
std::vector<LoggedText> loggedTexts(const std::vector<std::string>& exceptIn = {});

// The lines in the blocks "```log" of a document in Markdown.
std::vector<std::string> quotedLogLines(const std::string& document);

// Whether some call in the sources can log "[LEVEL] text"; what stands before the level does not matter.
bool isLogged(std::string_view line, const std::vector<LoggedText>& texts);

// Whether some call can log a text that begins so. A text of which too little is written out does not count.
bool isBegunBySome(std::string_view beginning, const std::vector<LoggedText>& texts);

}  // namespace karno::test
