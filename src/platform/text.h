#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/error.h"

namespace karno::platform {

// Bytes [begin, end) of a UTF-8 text.
struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool operator==(const TextRange&) const = default;
};

// Formats moments in the user's locale and time zone as they are when it is asked. Safe from any thread.
class DateFormatter {
 public:
  virtual ~DateFormatter() = default;
  virtual std::string stringFromDate(Date date) const = 0;
};

// A compiled regular expression (ICU syntax). Immutable and safe from any thread.
class RegularExpression {
 public:
  virtual ~RegularExpression() = default;

  // The text of the first match; absent when there is none.
  virtual std::optional<std::string> firstMatch(std::string_view text) const = 0;

  // Every match replaced. In the template "$1" stands for the first group, "$0" for the match, and a
  // backslash makes the next character literal. A group that does not exist stands for nothing.
  virtual std::string stringByReplacingMatches(std::string_view text,
                                               std::string_view replacementTemplate) const = 0;
};

// The platform's text rules for all of Unicode. Safe from any thread. Bytes that are not UTF-8 count as
// U+FFFD.
class Text {
 public:
  virtual ~Text() = default;

  // `pattern` has the Unicode date pattern letters.
  virtual std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& pattern) const = 0;

  // The words of the text as the user's locale segments it, in order; blanks and punctuation are in none.
  virtual std::vector<TextRange> wordRanges(std::string_view text) const = 0;

  // One word capitalised by the user's locale: first letter upper (title) case, the rest lower case.
  virtual std::string capitalise(std::string_view word) const = 0;

  // Lower case without regard to the locale.
  virtual std::string lowercase(std::string_view text) const = 0;

  // Upper case without regard to the locale.
  virtual std::string uppercase(std::string_view text) const = 0;

  // Below, equal to or above zero as `a` comes before, with or after `b`: from the left, a run of decimal
  // digits against a run of digits by numeric value ("01" is 1), any other character by its value and bytes
  // that are not UTF-8 by theirs; when all before was equal, the text that ends first is the smaller, so
  // "13.0" comes before "13.0.0".
  virtual int compareNumerically(std::string_view a, std::string_view b) const = 0;

  // The error says what is wrong with the pattern.
  virtual Result<std::shared_ptr<const RegularExpression>> makeRegularExpression(
      const std::string& pattern) const = 0;

  virtual bool isEqualCaseInsensitive(std::string_view a, std::string_view b) const = 0;

  // Whether the regular expression (ICU syntax) occurs in the text. A bad pattern occurs nowhere.
  virtual bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase) const = 0;
};

}  // namespace karno::platform
