#include "karnoctl/self_check/text_shapes.h"

#include <algorithm>

namespace karno::karnoctl {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isLabel(std::string_view text) {
  constexpr std::size_t kLettersMax = 63;
  return !text.empty() && text.size() <= kLettersMax && !text.starts_with('-') && !text.ends_with('-') &&
         std::ranges::all_of(text, [](char c) { return isDigit(c) || isLetter(c) || c == '-'; });
}

bool isPort(std::string_view text) {
  return !text.empty() && text.size() <= 5 && std::ranges::all_of(text, isDigit);
}

}  // namespace

bool looksLikeHost(std::string_view text) {
  constexpr std::size_t kLettersMax = 260;
  if (text.size() > kLettersMax) return false;
  if (const std::size_t colon = text.find(':'); colon != std::string_view::npos) {
    if (!isPort(text.substr(colon + 1))) return false;
    text = text.substr(0, colon);
  }
  for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.')) {
    if (!isLabel(text.substr(0, dot))) return false;
    text.remove_prefix(dot + 1);
  }
  return isLabel(text);
}

}  // namespace karno::karnoctl
