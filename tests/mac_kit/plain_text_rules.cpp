#include <fmt/format.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <regex>

#include "platform/numeric_order.h"
#include "text_rules.h"

// Text rules for ASCII, of nothing but the C++ library. The Mac's own cannot be asked in a process that was
// forked and not started anew, which is what each case of the unit tests runs in.
namespace karno::test {
namespace {

using platform::Date;
using platform::TextRange;

bool isLower(char byte) { return byte >= 'a' && byte <= 'z'; }
bool isUpper(char byte) { return byte >= 'A' && byte <= 'Z'; }
bool isOfWord(char byte) { return isLower(byte) || isUpper(byte) || (byte >= '0' && byte <= '9'); }
char lowered(char byte) { return isUpper(byte) ? static_cast<char>(byte - 'A' + 'a') : byte; }
char raised(char byte) { return isLower(byte) ? static_cast<char>(byte - 'a' + 'A') : byte; }

std::string mapped(std::string_view text, char (*map)(char)) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), map);
  return result;
}

tm localTime(Date date, const std::string& timeZone) {
  ::setenv("TZ", timeZone.c_str(), 1);
  ::tzset();
  const time_t seconds = std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(date));
  tm parts = {};
  ::localtime_r(&seconds, &parts);
  return parts;
}

std::string zoneText(const tm& parts) {
  const long minutes = parts.tm_gmtoff / 60;
  return fmt::format("{}{:02}{:02}", minutes < 0 ? '-' : '+', std::abs(minutes) / 60, std::abs(minutes) % 60);
}

// One run of a pattern letter.
std::string field(char letter, std::size_t count, const tm& parts, long milliseconds) {
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  switch (letter) {
    case 'y':
      return fmt::format("{:04}", parts.tm_year + 1900);
    case 'M':
      return count > 2 ? kMonths[parts.tm_mon] : fmt::format("{:02}", parts.tm_mon + 1);
    case 'd':
      return fmt::format("{:02}", parts.tm_mday);
    case 'H':
      return fmt::format("{:02}", parts.tm_hour);
    case 'm':
      return fmt::format("{:02}", parts.tm_min);
    case 's':
      return fmt::format("{:02}", parts.tm_sec);
    case 'S':
      return fmt::format("{:03}", milliseconds).substr(0, count);
    case 'Z':
      return zoneText(parts);
    default:
      return std::string(count, letter);
  }
}

class PlainDateFormatter final : public platform::DateFormatter {
 public:
  PlainDateFormatter(std::string pattern, std::string timeZone)
      : pattern_(std::move(pattern)), timeZone_(std::move(timeZone)) {}

  std::string stringFromDate(Date date) const override {
    const auto second = std::chrono::floor<std::chrono::seconds>(date);
    const tm parts = localTime(second, timeZone_);
    const long milliseconds =
        static_cast<long>(std::chrono::floor<std::chrono::milliseconds>(date - second).count());
    std::string text;
    bool isQuoted = false;
    for (std::size_t begin = 0; begin < pattern_.size();) {
      const std::size_t end = std::min(pattern_.find_first_not_of(pattern_[begin], begin), pattern_.size());
      if (pattern_[begin] == '\'') {
        isQuoted = !isQuoted;
      } else {
        text += isQuoted ? std::string(end - begin, pattern_[begin])
                         : field(pattern_[begin], end - begin, parts, milliseconds);
      }
      begin = end;
    }
    return text;
  }

 private:
  const std::string pattern_;
  const std::string timeZone_;
};

// The library's grammar knows the two ends of the text by other names.
std::string inThisGrammar(std::string pattern) {
  if (pattern.starts_with("\\A")) pattern.replace(0, 2, "^");
  if (pattern.ends_with("\\z")) pattern.replace(pattern.size() - 2, 2, "$");
  return pattern;
}

class PlainExpression final : public platform::RegularExpression {
 public:
  explicit PlainExpression(const std::string& pattern) : expression_(inThisGrammar(pattern)) {}

  std::optional<std::string> firstMatch(std::string_view text) const override {
    std::cmatch match;
    if (!std::regex_search(text.data(), text.data() + text.size(), match, expression_)) return std::nullopt;
    return match.str();
  }

  std::string stringByReplacingMatches(std::string_view text,
                                       std::string_view replacementTemplate) const override {
    std::string result;
    const char* const end = text.data() + text.size();
    const char* from = text.data();
    for (std::cregex_iterator match(from, end, expression_), none; match != none; ++match) {
      result.append(from, (*match)[0].first);
      result += filled(replacementTemplate, *match);
      from = (*match)[0].second;
    }
    return result.append(from, end);
  }

 private:
  // A backslash makes the next character literal, and "$1" stands for the first group.
  static std::string filled(std::string_view pattern, const std::cmatch& match) {
    std::string result;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
      const bool isLast = at + 1 == pattern.size();
      if (pattern[at] == '\\' && !isLast) {
        result += pattern[++at];
      } else if (pattern[at] == '$' && !isLast && pattern[at + 1] >= '0' && pattern[at + 1] <= '9') {
        result += match.str(static_cast<std::size_t>(pattern[++at] - '0'));
      } else {
        result += pattern[at];
      }
    }
    return result;
  }

  const std::regex expression_;
};

class PlainText final : public platform::Text {
 public:
  explicit PlainText(std::string timeZone) : timeZone_(std::move(timeZone)) {}

  std::unique_ptr<platform::DateFormatter> makeDateFormatter(const std::string& pattern) const override {
    return std::make_unique<PlainDateFormatter>(pattern, timeZone_);
  }

  std::vector<TextRange> wordRanges(std::string_view text) const override {
    std::vector<TextRange> words;
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (!isOfWord(text[at])) continue;
      const std::size_t begin = at;
      while (at < text.size() && isOfWord(text[at])) ++at;
      words.push_back({begin, at});
    }
    return words;
  }

  std::string capitalise(std::string_view word) const override {
    std::string result = lowercase(word);
    if (!result.empty()) result.front() = raised(result.front());
    return result;
  }

  std::string lowercase(std::string_view text) const override { return mapped(text, lowered); }
  std::string uppercase(std::string_view text) const override { return mapped(text, raised); }

  int compareNumerically(std::string_view a, std::string_view b) const override {
    return platform::numericOrder(a, b);
  }

  platform::Result<std::shared_ptr<const platform::RegularExpression>> makeRegularExpression(
      const std::string& pattern) const override {
    try {
      return std::shared_ptr<const platform::RegularExpression>(std::make_shared<PlainExpression>(pattern));
    } catch (const std::regex_error& error) {
      return platform::Error(std::string(platform::kCocoaErrorDomain), 2048,
                             {{std::string(platform::kLocalizedDescriptionKey), error.what()}});
    }
  }

  bool isEqualCaseInsensitive(std::string_view a, std::string_view b) const override {
    return lowercase(a) == lowercase(b);
  }

  bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const override {
    const auto options = ignoreCase ? std::regex::ECMAScript | std::regex::icase : std::regex::ECMAScript;
    try {
      return std::regex_search(text.begin(), text.end(),
                               std::regex(inThisGrammar(std::string(pattern)), options));
    } catch (const std::regex_error&) {
      return false;
    }
  }

 private:
  const std::string timeZone_;
};

}  // namespace

std::unique_ptr<platform::Text> textRules(const std::string& /*locale*/, const std::string& timeZone) {
  return std::make_unique<PlainText>(timeZone);
}

}  // namespace karno::test
