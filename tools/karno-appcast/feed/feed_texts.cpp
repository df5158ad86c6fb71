#include "karno-appcast/feed/feed_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string_view>

#include "karno-appcast/failure.h"
#include "platform/text/utf8.h"

namespace karno::appcast {
namespace {

constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::string_view kHTTPS = "https://";
constexpr std::string_view kHTTP = "http://";
constexpr std::size_t kDigitsMax = 6;  // of one part of a system's version

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isUnreserved(char c) {
  return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         std::string_view("-._~").find(c) != std::string_view::npos;
}

}  // namespace

bool isTextForFeed(std::string_view text) {
  const auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
  };
  return platform::isValidUTF8(text) && std::ranges::none_of(text, isControl);
}

std::string feedDate(std::int64_t secondsSince1970) {
  const std::time_t moment = secondsSince1970;
  std::tm parts = {};
  if (::gmtime_r(&moment, &parts) == nullptr) throw Failure("the date of a file is out of range");
  return fmt::format("{}, {:02} {} {} {:02}:{:02}:{:02} +0000",
                     kDays.at(static_cast<std::size_t>(parts.tm_wday)), parts.tm_mday,
                     kMonths.at(static_cast<std::size_t>(parts.tm_mon)), parts.tm_year + 1900, parts.tm_hour,
                     parts.tm_min, parts.tm_sec);
}

std::string downloadURL(std::string_view prefix, std::string_view fileName) {
  std::string url(prefix);
  if (!url.ends_with('/')) url += '/';
  for (const char c : fileName) {
    if (isUnreserved(c)) {
      url += c;
    } else {
      url += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return url;
}

std::string checkedPrefix(std::string_view prefix, bool allowHTTP) {
  const bool isHTTP = prefix.starts_with(kHTTP);
  if (isHTTP && !allowHTTP) throw Failure("the URL prefix must begin with https:// (or say --allow-http)");
  if (!isHTTP && !prefix.starts_with(kHTTPS)) throw Failure("the URL prefix must begin with https://");
  const std::string_view rest = prefix.substr(isHTTP ? kHTTP.size() : kHTTPS.size());
  const auto isStrange = [](char c) { return static_cast<unsigned char>(c) <= 0x20 || c == '"' || c == '<'; };
  if (rest.empty() || rest.front() == '/' || std::ranges::any_of(rest, isStrange) ||
      rest.find_first_of("?#") != std::string_view::npos)
    throw Failure(fmt::format("'{}' is no prefix of a URL", prefix));
  return std::string(prefix);
}

void checkedAddress(std::string_view address, bool allowHTTP) {
  const bool isHTTP = address.starts_with(kHTTP);
  const std::string_view rest =
      address.substr(std::min(address.size(), isHTTP ? kHTTP.size() : kHTTPS.size()));
  const auto isStrange = [](char c) { return static_cast<unsigned char>(c) <= 0x20 || c == '"' || c == '<'; };
  const bool isWeb = isHTTP ? allowHTTP : address.starts_with(kHTTPS);
  if (!isWeb || rest.empty() || rest.front() == '/' || !isTextForFeed(rest) ||
      std::ranges::any_of(rest, isStrange))
    throw Failure(
        fmt::format("'{}' is no https:// address of a page", isTextForFeed(address) ? address : "?"));
}

std::string threePartVersion(std::string_view version) {
  const auto wrong = [version] { return Failure(fmt::format("'{}' is no version of a system", version)); };
  std::string text;
  std::string_view rest = version;
  for (int part = 0; part < 3; ++part) {
    if (part > 0) text += '.';
    if (part > 0 && rest.empty()) {
      text += '0';
      continue;
    }
    if (part > 0 && !rest.starts_with('.')) throw wrong();
    if (part > 0) rest.remove_prefix(1);
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(rest, isDigit) - rest.begin());
    if (length == 0 || length > kDigitsMax) throw wrong();
    text += rest.substr(0, length);
    rest.remove_prefix(length);
  }
  if (!rest.empty()) throw wrong();
  return text;
}

}  // namespace karno::appcast
