#include "localise/plain_placeholder.h"

#include <algorithm>

namespace karno {
namespace {

bool isKeyCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool isASCII(char c) { return static_cast<unsigned char>(c) < 0x80; }

enum class Match { Yes, No, Unknown };

// Takes the parts of a placeholder off the front of a text. Unknown when a part is missing before a character
// that is not ASCII, since that could be white space.
class PlaceholderReader {
 public:
  explicit PlaceholderReader(std::string_view rest) : rest_(rest) {}

  Match read(std::string_view key) {
    for (const std::string_view part :
         {std::string_view("{"), std::string_view("{"), key, std::string_view("}"), std::string_view("}")}) {
      if (const Match match = take(part); match != Match::Yes) return match;
    }
    return Match::Yes;
  }

  std::string_view rest() const { return rest_; }

 private:
  Match take(std::string_view part) {
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), isWhiteSpace);
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.begin()));
    if (!rest_.empty() && !isASCII(rest_.front())) return Match::Unknown;
    if (!rest_.starts_with(part)) return Match::No;
    rest_.remove_prefix(part.size());
    return Match::Yes;
  }

  std::string_view rest_;
};

}  // namespace

std::optional<std::string> textWithPlainPlaceholdersFilled(std::string_view key, std::string_view value,
                                                           std::string_view text) {
  if (key.empty() || !std::all_of(key.begin(), key.end(), isKeyCharacter)) return std::nullopt;
  if (value.find_first_of("$\\") != std::string_view::npos) return std::nullopt;

  std::string filled;
  for (std::size_t brace = text.find('{'); brace != std::string_view::npos;) {
    PlaceholderReader reader(text.substr(brace));
    const Match match = reader.read(key);
    if (match == Match::Unknown) return std::nullopt;
    if (match == Match::No) {
      brace = text.find('{', brace + 1);
      continue;
    }
    filled.append(text.substr(0, brace)).append(value);
    text = reader.rest();
    brace = text.find('{');
  }
  return filled.append(text);
}

}  // namespace karno
