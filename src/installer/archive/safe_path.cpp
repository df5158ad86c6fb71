#include "installer/archive/safe_path.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

#include "platform/text/utf8.h"

namespace karno::installer {
namespace {

Failure refused(std::string_view name, std::string_view reason) {
  return {FailureCode::Unpacking,
          "The archive holds the name \"" + oneLine(name) + "\", which " + std::string(reason) + "."};
}

// The names between the slashes; empty ones and "." are left out.
SafePath namesIn(std::string_view text) {
  SafePath names;
  while (!text.empty()) {
    const std::size_t end = text.find('/');
    const std::string_view name = text.substr(0, end);
    if (!name.empty() && name != ".") names.emplace_back(name);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return names;
}

}  // namespace

Outcome<SafePath> safePath(std::string_view name, const UnpackLimits& limits) {
  if (name.empty()) return refused(name, "is empty");
  if (name.size() > limits.nameBytesMax) return refused(name, "is too long");
  if (name.find('\0') != std::string_view::npos) return refused(name, "holds a zero byte");
  if (name.front() == '/') return refused(name, "is absolute");
  if (!platform::isValidUTF8(name)) return refused(name, "is not UTF-8");
  SafePath names = namesIn(name);
  for (const std::string& each : names) {
    if (each == "..") return refused(name, "leads out of its folder");
  }
  if (names.size() > limits.depthMax) return refused(name, "is too deep");
  return names;
}

bool isPassedOver(const SafePath& path, bool isFile) {
  if (path.empty()) return true;
  return path.front() == "__MACOSX" || (isFile && path.back().starts_with("._"));
}

bool staysInside(const SafePath& place, std::string_view target, const UnpackLimits& limits) {
  if (target.empty() || target.size() > limits.nameBytesMax || target.front() == '/') return false;
  if (target.find('\0') != std::string_view::npos || place.size() < 2) return false;

  std::size_t levelsBelowTop = place.size() - 2;
  bool hasName = false;
  for (const std::string& name : namesIn(target)) {
    if (name != "..") {
      hasName = true;
    } else if (hasName || levelsBelowTop == 0) {
      return false;
    } else {
      --levelsBelowTop;
    }
  }
  return true;
}

std::string joined(const SafePath& path) { return fmt::format("{}", fmt::join(path, "/")); }

}  // namespace karno::installer
