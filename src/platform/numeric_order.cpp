#include "platform/numeric_order.h"

#include <algorithm>
#include <cstddef>

namespace karno::platform {
namespace {

// The decimal digits that the platform's numeric search knows.
bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool beginsWithDigit(std::string_view text) { return !text.empty() && isDigit(text.front()); }

int sign(int number) { return (number > 0) - (number < 0); }

}  // namespace

std::string_view takeNumber(std::string_view& text) {
  const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
  std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(number.size());
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

int orderOfNumbers(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  return sign(a.compare(b));
}

int numericOrder(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (beginsWithDigit(a) && beginsWithDigit(b)) {
      const std::string_view numberOfA = takeNumber(a);
      if (const int order = orderOfNumbers(numberOfA, takeNumber(b)); order != 0) return order;
      continue;
    }
    // The bytes of UTF-8 sort as the characters do.
    const auto byteOfA = static_cast<unsigned char>(a.front());
    const auto byteOfB = static_cast<unsigned char>(b.front());
    if (byteOfA != byteOfB) return byteOfA < byteOfB ? -1 : 1;
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace karno::platform
