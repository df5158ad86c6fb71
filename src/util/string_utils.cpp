#include "util/string_utils.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/platform.h"
#include "platform/text/utf8.h"

namespace karno {
namespace {

// The platform's set of characters that may stand in a URL path as they are. The semicolon is not among them,
// since it once began path parameters.
constexpr std::string_view kUrlPathAllowed =
    "!$&'()*+,-./0123456789:=@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";

bool isWhitespaceOrNewline(char32_t c) {
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

std::string withCollapsedSlashes(std::string_view path) {
  std::string collapsed;
  for (const char c : path) {
    if (c != '/' || collapsed.empty() || collapsed.back() != '/') collapsed += c;
  }
  if (collapsed.size() > 1 && collapsed.back() == '/') collapsed.pop_back();
  return collapsed;
}

}  // namespace

std::string u_stringByAppendingPathComponents(std::string_view text,
                                              const std::vector<std::string>& components) {
  std::string path(text);
  for (const std::string& component : components) {
    if (!path.empty()) path += '/';
    path = withCollapsedSlashes(path + component);
  }
  return path;
}

std::string u_captilisiedString(std::string_view text) {
  const platform::Text& rules = platform::host().text;
  std::string result;
  std::size_t copied = 0;
  for (const platform::TextRange& word : rules.wordRanges(text)) {
    result += text.substr(copied, word.begin - copied);
    result += rules.capitalise(text.substr(word.begin, word.end - word.begin));
    copied = word.end;
  }
  result += text.substr(copied);
  return result;
}

bool u_containsString(std::string_view text, std::string_view searched) {
  return !searched.empty() && text.find(searched) != std::string_view::npos;
}

bool u_hasHTTPSPrefix(std::string_view text) {
  if (text.empty()) return false;
  return platform::host().text.containsMatch("^https*://", text, true);
}

bool u_hasPathExtension(std::string_view text, const std::vector<std::string>& extensions) {
  const std::string extension = platform::host().text.lowercase(pathExtension(text));
  if (extension.empty()) return false;
  return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

std::string u_pathEncodedString(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if (kUrlPathAllowed.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      encoded += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return encoded;
}

bool u_onlyContainsCharactersInSet(std::string_view text, const CharacterSet& set) {
  while (!text.empty()) {
    if (!set(platform::takeCharacter(text))) return false;
  }
  return true;
}

bool u_isEqualToCaseInsensitive(std::string_view text, std::string_view other) {
  return platform::host().text.isEqualCaseInsensitive(text, other);
}

std::string u_stringForInteger(std::int64_t integer) { return fmt::format("{}", integer); }

std::string lastPathComponent(std::string_view path) {
  const std::string collapsed = withCollapsedSlashes(path);
  if (collapsed == "/") return collapsed;
  return collapsed.substr(collapsed.rfind('/') + 1);
}

std::string deletingLastPathComponent(std::string_view path) {
  const std::string collapsed = withCollapsedSlashes(path);
  const std::size_t slash = collapsed.rfind('/');
  if (slash == std::string::npos) return "";
  return slash == 0 ? "/" : collapsed.substr(0, slash);
}

std::vector<std::string> pathComponents(std::string_view path) {
  const std::string collapsed = withCollapsedSlashes(path);
  std::vector<std::string> components;
  if (collapsed.starts_with('/')) components.emplace_back("/");
  for (std::size_t begin = 0; begin < collapsed.size();) {
    const std::size_t end = std::min(collapsed.find('/', begin), collapsed.size());
    if (end > begin) components.push_back(collapsed.substr(begin, end - begin));
    begin = end + 1;
  }
  return components;
}

std::string pathExtension(std::string_view path) {
  const std::string name = lastPathComponent(path);
  const std::size_t point = name.rfind('.');
  if (point == std::string::npos || point == 0) return "";
  return name.substr(point + 1);
}

std::string trimmingWhitespaceAndNewlines(std::string_view text) {
  const char* const start = text.data();
  std::string_view rest = text;
  std::size_t begin = text.size();
  std::size_t end = text.size();
  while (!rest.empty()) {
    const auto at = static_cast<std::size_t>(rest.data() - start);
    if (isWhitespaceOrNewline(platform::takeCharacter(rest))) continue;
    begin = std::min(begin, at);
    end = static_cast<std::size_t>(rest.data() - start);
  }
  return std::string(text.substr(begin, end - begin));
}

std::string descriptionOrNull(const std::optional<platform::Value>& value) {
  return value ? value->description() : "(null)";
}

std::string descriptionOrNull(const std::optional<std::string>& text) { return text.value_or("(null)"); }

}  // namespace karno
