#include "installer/archive/failure.h"

#include <algorithm>
#include <cstddef>
#include <system_error>

#include "platform/text/utf8.h"

namespace karno::installer {
namespace {

constexpr std::size_t kLineBytesMax = 500;

bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

}  // namespace

Failure systemFailure(int error) {
  return {FailureCode::Unpacking,
          "The archive could not be unpacked: " + std::generic_category().message(error) + "."};
}

std::string oneLine(std::string_view bytes) {
  std::string line(bytes.substr(0, kLineBytesMax));
  std::replace_if(line.begin(), line.end(), isControl, '?');
  if (platform::isValidUTF8(line)) return line;
  std::replace_if(
      line.begin(), line.end(), [](char c) { return (c & 0x80) != 0; }, '?');
  return line;
}

}  // namespace karno::installer
