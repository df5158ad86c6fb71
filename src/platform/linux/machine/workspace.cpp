#include "platform/linux/machine/workspace.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/posix/console_line.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

constexpr std::size_t kUrlBytesMax = 64U << 10U;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isSchemeCharacter(char c) {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// Visible ASCII: everything else is written with "%" in a URL.
bool isUrlCharacter(char c) { return c > ' ' && c < '\x7f'; }

// An absolute URL with an authority. Anything else "open" would take for an option or a file.
bool isUrl(std::string_view text) {
  const std::size_t schemeEnd = text.find("://");
  if (schemeEnd == std::string_view::npos || text.size() > kUrlBytesMax) return false;
  const std::string_view scheme = text.substr(0, schemeEnd);
  return !scheme.empty() && isLetter(scheme.front()) && std::ranges::all_of(scheme, isSchemeCharacter) &&
         std::ranges::all_of(text, isUrlCharacter);
}

}  // namespace

void LinuxWorkspace::openURL(const std::string& url) {
  if (!isUrl(url)) {
    writeConsoleLine("Workspace: this is no URL and cannot be opened: " + url);
    return;
  }
  const auto child = tasks_.launch({.executablePath = systemPath("/usr/bin/open"), .arguments = {url}},
                                   [](const TaskEnd&) {});
  if (!child) {
    writeConsoleLine("Workspace: failed to open " + url +
                     ". Reason: " + child.error().localizedDescription());
  }
}

}  // namespace karno::platform
