#pragma once
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/text.h"

namespace karno::platform {

// Where the UTF-16 code units of a platform string lie in the UTF-8 text that it was made of. Bytes that are
// not UTF-8 became U+FFFD one by one.
class Utf16Positions {
 public:
  // `original` is any bytes, `readBack` the UTF-8 text of the platform string made of them.
  Utf16Positions(std::string_view original, std::string_view readBack);

  std::size_t unitCount() const { return byteOfUnit_.size() - 1; }

  // The bytes of `length` units from `location` on. What lies beyond the end is left out; a character that is
  // cut in half counts as a whole.
  TextRange bytes(std::size_t location, std::size_t length) const;

 private:
  std::vector<std::size_t> byteOfUnit_;  // and one more entry, the end
  std::vector<std::size_t> endOfUnit_;   // the end of the character that the unit belongs to
};

}  // namespace karno::platform
