#include "karnoctl/self_check/text_shapes.h"

#include <algorithm>

namespace karno::karnoctl {
namespace {

constexpr std::string_view kBase64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

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

bool looksLikePublicKey(std::string_view text) {
  constexpr std::size_t kLetters = 44;  // the last one fills up
  if (text.size() != kLetters || !text.ends_with('=')) return false;
  text.remove_suffix(1);
  const bool allDigits =
      std::ranges::all_of(text, [](char c) { return kBase64Digits.find(c) != std::string_view::npos; });
  // Of its last six bits two lie behind the 32 bytes.
  return allDigits && kBase64Digits.find(text.back()) % 4 == 0;
}

}  // namespace karno::karnoctl
