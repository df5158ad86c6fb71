#include "platform/property_lists/xml_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/property_lists/errors.h"
#include "platform/text/utf8.h"

namespace karno::platform::lists {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";
constexpr std::size_t kEntityLengthMax = 12;
constexpr std::array<std::pair<std::string_view, char32_t>, 5> kEntities = {
    {{"lt", U'<'}, {"gt", U'>'}, {"amp", U'&'}, {"quot", U'"'}, {"apos", U'\''}}};

bool isNameCharacter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

}  // namespace

std::size_t XMLScanner::lineNumber() const {
  const std::string_view before = xml_.substr(0, position_);
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

bool XMLScanner::skip(std::string_view token) {
  if (!rest().starts_with(token)) {
    return false;
  }
  position_ += token.size();
  return true;
}

void XMLScanner::skipThrough(std::string_view token) {
  const std::size_t found = xml_.find(token, position_);
  if (found == std::string_view::npos) {
    throw Damage("the text ends too early");
  }
  position_ = found + token.size();
}

void XMLScanner::skipToTag() {
  while (true) {
    position_ = std::min(xml_.find_first_not_of(kWhiteSpace, position_), xml_.size());
    if (skip("<!--")) {
      skipThrough("-->");
    } else if (skip("<?")) {
      skipThrough("?>");
    } else if (skip("<!DOCTYPE")) {
      skipDocumentType();
    } else {
      return;
    }
  }
}

// Declarations could define entities that unfold without end.
void XMLScanner::skipDocumentType() {
  const std::size_t begin = position_;
  skipThrough(">");
  if (xml_.substr(begin, position_ - begin).find('[') != std::string_view::npos) {
    throw Damage("the document type has declarations");
  }
}

void XMLScanner::skipAttributes() {
  while (true) {
    const std::size_t next = xml_.find_first_of("\"'<>/", position_);
    if (next == std::string_view::npos || xml_[next] == '<') {
      throw Damage("a tag does not end");
    }
    position_ = next;
    if (xml_[next] == '>' || xml_[next] == '/') {
      return;
    }
    ++position_;
    skipThrough(xml_.substr(next, 1));
  }
}

XMLTag XMLScanner::readTag() {
  if (!skip("<")) {
    throw Damage(isAtEnd() ? "the text ends too early" : "there is text where a tag belongs");
  }
  XMLTag tag{.name = {}, .isClosing = skip("/")};
  const std::size_t begin = position_;
  while (position_ < xml_.size() && isNameCharacter(xml_[position_])) {
    ++position_;
  }
  tag.name = xml_.substr(begin, position_ - begin);
  skipAttributes();
  tag.isEmpty = skip("/");
  if (tag.name.empty() || (tag.isClosing && tag.isEmpty) || !skip(">")) {
    throw Damage("a tag is malformed");
  }
  return tag;
}

char32_t XMLScanner::readEntity() {
  const std::string_view name = rest().substr(0, rest().substr(0, kEntityLengthMax).find(';'));
  for (const auto& [known, character] : kEntities) {
    if (name == known && skip(name)) {
      skipThrough(";");
      return character;
    }
  }
  if (!name.starts_with('#')) {
    throw Damage("an entity is unknown");
  }
  const bool isHexadecimal = name.starts_with("#x");
  const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, problem] = std::from_chars(digits.data(), end, number, isHexadecimal ? 16 : 10);
  if (problem != std::errc() || stop != end || !isUnicodeCharacter(number)) {
    throw Damage("a character reference is none");
  }
  position_ += name.size();
  skipThrough(";");
  return number;
}

std::string XMLScanner::readText() {
  std::string text;
  while (true) {
    const std::size_t next = std::min(xml_.find_first_of("<&", position_), xml_.size());
    text += xml_.substr(position_, next - position_);
    position_ = next;
    if (skip("&")) {
      appendUTF8(text, readEntity());
    } else if (skip("<!--")) {
      skipThrough("-->");
    } else if (skip("<![CDATA[")) {
      const std::size_t begin = position_;
      skipThrough("]]>");
      text += xml_.substr(begin, position_ - 3 - begin);
    } else {
      return text;
    }
  }
}

}  // namespace karno::platform::lists
