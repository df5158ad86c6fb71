#include "platform/version_order.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "platform/numeric_order.h"

namespace karno::platform {
namespace {

enum class Kind { Word, End, Number };  // in their order: a word is older than nothing, nothing than a number

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0; }

template <class Belongs>
std::string_view takeWhile(std::string_view& rest, Belongs belongs) {
  const auto end =
      static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), belongs) - rest.begin());
  const std::string_view taken = rest.substr(0, end);
  rest.remove_prefix(end);
  return taken;
}

// Goes to the next run and says what it is.
Kind nextRun(std::string_view& rest) {
  takeWhile(rest, [](char c) { return (c < '0' || c > '9') && !isLetter(c); });
  if (rest.empty()) return Kind::End;
  return isLetter(rest.front()) ? Kind::Word : Kind::Number;
}

}  // namespace

std::strong_ordering compareVersions(std::string_view one, std::string_view other) {
  while (true) {
    const Kind left = nextRun(one);
    const Kind right = nextRun(other);
    if (left == Kind::End && right == Kind::End) return std::strong_ordering::equal;
    if (left != right && (left == Kind::Word || right == Kind::Word)) return left <=> right;
    const int order = left == Kind::Word ? takeWhile(one, isLetter).compare(takeWhile(other, isLetter))
                                         : orderOfNumbers(takeNumber(one), takeNumber(other));
    if (order != 0) return order <=> 0;
  }
}

std::array<int, 3> versionParts(std::string_view version) {
  std::array<int, 3> parts = {};
  for (int& part : parts) {
    const auto read = std::from_chars(version.data(), version.data() + version.size(), part);
    if (read.ec == std::errc::result_out_of_range) part = std::numeric_limits<int>::max();
    const std::size_t dot = version.find('.');
    if (dot == std::string_view::npos) break;
    version.remove_prefix(dot + 1);
  }
  return parts;
}

}  // namespace karno::platform
