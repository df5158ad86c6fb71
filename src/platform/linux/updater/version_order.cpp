#include "platform/linux/updater/version_order.h"

#include <algorithm>

namespace karno::platform::updates {
namespace {

enum class Kind { Word, End, Number };  // in their order: a word is older than nothing, nothing than a number

struct Run {
  Kind kind = Kind::End;
  std::string_view text;  // of a number, without leading zeros
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0; }

template <class Belongs>
std::string_view takeWhile(std::string_view& rest, Belongs belongs) {
  const auto end =
      static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), belongs) - rest.begin());
  const std::string_view taken = rest.substr(0, end);
  rest.remove_prefix(end);
  return taken;
}

Run nextRun(std::string_view& rest) {
  takeWhile(rest, [](char c) { return !isDigit(c) && !isLetter(c); });
  if (rest.empty()) return {};
  if (isLetter(rest.front())) return {Kind::Word, takeWhile(rest, isLetter)};
  std::string_view digits = takeWhile(rest, isDigit);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return {Kind::Number, digits};
}

std::weak_ordering compareRuns(const Run& one, const Run& other) {
  if (one.kind != other.kind) {
    const bool isZero = (one.kind == Kind::Number && one.text.empty() && other.kind == Kind::End) ||
                        (other.kind == Kind::Number && other.text.empty() && one.kind == Kind::End);
    if (isZero) return std::weak_ordering::equivalent;
    return one.kind < other.kind ? std::weak_ordering::less : std::weak_ordering::greater;
  }
  if (one.kind == Kind::Number && one.text.size() != other.text.size())
    return one.text.size() < other.text.size() ? std::weak_ordering::less : std::weak_ordering::greater;
  const int order = one.text.compare(other.text);
  if (order == 0) return std::weak_ordering::equivalent;
  return order < 0 ? std::weak_ordering::less : std::weak_ordering::greater;
}

}  // namespace

std::weak_ordering compareVersions(std::string_view one, std::string_view other) {
  while (true) {
    const Run left = nextRun(one);
    const Run right = nextRun(other);
    const std::weak_ordering order = compareRuns(left, right);
    if (order != std::weak_ordering::equivalent) return order;
    if (left.kind == Kind::End && right.kind == Kind::End) return order;
  }
}

}  // namespace karno::platform::updates
