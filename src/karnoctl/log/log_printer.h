#pragma once
#include <iosfwd>
#include <string>
#include <string_view>

namespace karno::karnoctl {

// Whether lines of the launcher's log have that level.
bool isLogLevel(std::string_view level);

// One line of the log with its level in colour. Other lines, such as the further ones of a message with
// newlines in it, come back as they are.
std::string colouredLogLine(std::string_view line);

// The line with control characters written as "^[", so that nothing a message carries can move the cursor of
// a terminal or change its settings. Tabs stay. What is no character of ASCII but does the like, or turns the
// direction of the text, is written as "\u009b", and a byte that is not UTF-8 as U+FFFD.
std::string withoutControlCharacters(std::string_view line);

struct LogPrinting {
  bool toTerminal = false;
  bool colours = false;
};

// Prints the pieces of a log line by line. What follows the last newline waits for the rest.
class LogPrinter {
 public:
  LogPrinter(std::ostream& out, LogPrinting printing) : out_(out), printing_(printing) {}

  void print(std::string_view bytes);

  // Ends the line that still waits, if any.
  void endLine();

 private:
  void printLine(std::string_view line);

  std::ostream& out_;
  const LogPrinting printing_;
  std::string waiting_;
};

}  // namespace karno::karnoctl
