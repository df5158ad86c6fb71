#include "localise/plain_placeholder.h"

#include <algorithm>

namespace karno {
namespace {

bool isKeyCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool isASCII(char c) { return static_cast<unsigned char>(c) < 0x80; }

// Two searches for one character each are many times faster than one for either.
bool meansSomethingInATemplate(std::string_view value) {
  return value.find('$') != std::string_view::npos || value.find('\\') != std::string_view::npos;
}

// Takes the parts of a placeholder off the front of a text, with the white space between them.
class PlaceholderReader {
 public:
  explicit PlaceholderReader(std::string_view rest) : rest_(rest) {}

  bool read(std::string_view key) { return take('{') && take('{') && takeKey(key) && take('}') && take('}'); }

  // Whether it is not known if a placeholder is there: a part was missing before a character that is not
  // ASCII, which could be white space.
  bool isUncertain() const { return !rest_.empty() && !isASCII(rest_.front()); }

  std::string_view rest() const { return rest_; }

 private:
  bool take(char brace) {
    skipWhiteSpace();
    if (!rest_.starts_with(brace)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool takeKey(std::string_view key) {
    skipWhiteSpace();
    if (!rest_.starts_with(key)) return false;
    rest_.remove_prefix(key.size());
    return true;
  }

  void skipWhiteSpace() {
    while (!rest_.empty() && isWhiteSpace(rest_.front())) rest_.remove_prefix(1);
  }

  std::string_view rest_;
};

}  // namespace

std::optional<std::string> textWithPlainPlaceholdersFilled(std::string_view key, std::string_view value,
                                                           std::string_view text) {
  if (key.empty() || !std::all_of(key.begin(), key.end(), isKeyCharacter)) return std::nullopt;
  if (meansSomethingInATemplate(value)) return std::nullopt;

  std::string filled;
  filled.reserve(text.size() + value.size());
  for (std::size_t brace = text.find('{'); brace != std::string_view::npos;) {
    PlaceholderReader reader(text.substr(brace));
    if (reader.read(key)) {
      filled.append(text.substr(0, brace)).append(value);
      text = reader.rest();
      brace = text.find('{');
    } else {
      if (reader.isUncertain()) return std::nullopt;
      brace = text.find('{', brace + 1);
    }
  }
  return filled.append(text);
}

}  // namespace karno
