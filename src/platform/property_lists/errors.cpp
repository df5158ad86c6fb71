#include "platform/property_lists/errors.h"

#include <fmt/format.h>

namespace karno::platform::lists {
namespace {

constexpr std::int64_t kReadCorrupt = 3840;
constexpr std::int64_t kWriteInvalid = 3852;
constexpr std::int64_t kCoderReadCorrupt = 4864;

Error cocoaError(std::int64_t code, std::string description) {
  return Error(std::string(kCocoaErrorDomain), code,
               {{std::string(kLocalizedDescriptionKey), std::move(description)}});
}

}  // namespace

Error unreadablePropertyList(std::string_view reason) {
  return cocoaError(kReadCorrupt, fmt::format("The property list cannot be read: {}.", reason));
}

Error unwritablePropertyList(std::string_view reason) {
  return cocoaError(kWriteInvalid, fmt::format("The property list cannot be written: {}.", reason));
}

Error unreadableArchive(std::string_view reason) {
  return cocoaError(kCoderReadCorrupt, fmt::format("The keyed archive cannot be read: {}.", reason));
}

}  // namespace karno::platform::lists
