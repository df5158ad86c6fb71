#include "platform/linux/text/file_url.h"

#include <fmt/format.h>

namespace karno::platform {
namespace {

// What Foundation leaves as it is in the path of a URL, beside letters and digits.
constexpr std::string_view kUnescaped = "!$&'()*+,-./:=@_~";

bool isUnescaped(char byte) {
  const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
  const bool isDigit = byte >= '0' && byte <= '9';
  return isLetter || isDigit || kUnescaped.find(byte) != std::string_view::npos;
}

}  // namespace

std::string fileURL(std::string_view path) {
  std::string url = "file://";
  for (const char byte : path) {
    if (isUnescaped(byte)) {
      url += byte;
    } else {
      url += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
  }
  return url;
}

}  // namespace karno::platform
