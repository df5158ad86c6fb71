#include "logged_texts.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <utility>

#include "karnoctl_documents.h"

namespace karno::test {
namespace {

constexpr std::pair<std::string_view, std::string_view> kCalls[] = {
    {"logInfo(", "INFO"}, {"logWarn(", "WARN"},       {"logError(", "*** ERROR ***"}, {"logDebug(", "DEBUG"},
    {"logNet(", "NET"},   {"logVerbose(", "VERBOSE"}, {"logMessage(", "STARTUP"},
};

void skipSpace(std::string_view& text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
}

bool skip(std::string_view& text, std::string_view token) {
  if (!text.starts_with(token)) return false;
  text.remove_prefix(token.size());
  return true;
}

// The literals at the beginning, put together as the compiler does.
std::optional<std::string> literalsAt(std::string_view text) {
  std::optional<std::string> literal;
  for (skipSpace(text); skip(text, "\""); skipSpace(text)) {
    if (!literal) literal.emplace();
    for (; !text.empty() && text.front() != '"'; text.remove_prefix(1)) {
      if (text.front() == '\\') text.remove_prefix(1);
      *literal += text.front();
    }
    skip(text, "\"");
  }
  return literal;
}

void addTextsOf(const std::string& source, std::vector<LoggedText>& texts) {
  for (const auto& [call, level] : kCalls) {
    for (std::size_t at = source.find(call); at != std::string::npos; at = source.find(call, at + 1)) {
      std::string_view argument = std::string_view(source).substr(at + call.size());
      skipSpace(argument);
      skip(argument, "fmt::format(");
      if (auto pattern = literalsAt(argument)) texts.push_back({std::string(level), std::move(*pattern)});
    }
  }
}

// Whether the text is the pattern with something in the place of each "{...}".
bool matches(std::string_view text, std::string_view pattern) {
  const std::size_t gap = pattern.find('{');
  if (gap == std::string_view::npos) return text == pattern;
  if (!skip(text, pattern.substr(0, gap))) return false;
  const std::string_view rest = pattern.substr(pattern.find('}', gap) + 1);
  for (std::size_t length = 1; length <= text.size(); ++length) {
    if (matches(text.substr(length), rest)) return true;
  }
  return false;
}

}  // namespace

std::vector<LoggedText> loggedTexts(const std::vector<std::string>& exceptIn) {
  std::vector<LoggedText> texts;
  const std::filesystem::path sources(KARNO_SOURCES);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(sources / "src")) {
    const std::string path = entry.path().lexically_relative(sources).string();
    const bool isLeftOut =
        std::ranges::any_of(exceptIn, [&](const auto& folder) { return path.starts_with(folder); });
    if (entry.path().extension() == ".cpp" && !isLeftOut) addTextsOf(textOfSource(path), texts);
  }
  return texts;
}

std::vector<std::string> quotedLogLines(const std::string& document) {
  std::vector<std::string> lines;
  bool isInside = false;
  for (std::string& line : linesOf(document)) {
    if (line.starts_with("```")) {
      isInside = line == "```log";
    } else if (isInside) {
      lines.push_back(std::move(line));
    }
  }
  return lines;
}

bool isLogged(std::string_view line, const std::vector<LoggedText>& texts) {
  const std::size_t begin = line.find('[');
  const std::size_t end = line.find("] ", begin);
  if (begin == std::string_view::npos || end == std::string_view::npos) return false;
  const std::string_view level = line.substr(begin + 1, end - begin - 1);
  const std::string_view message = line.substr(end + 2);
  return std::any_of(texts.begin(), texts.end(), [&](const LoggedText& text) {
    return text.level == level && matches(message, text.pattern);
  });
}

bool isBegunBySome(std::string_view beginning, const std::vector<LoggedText>& texts) {
  constexpr std::size_t kEnoughLetters = 12;
  return std::any_of(texts.begin(), texts.end(), [&](const LoggedText& text) {
    const std::string_view written = std::string_view(text.pattern).substr(0, text.pattern.find('{'));
    return written.starts_with(beginning) ||
           (written.size() >= kEnoughLetters && beginning.starts_with(written) && written != text.pattern);
  });
}

}  // namespace karno::test
