#include "platform/cocoa/runtime/guarded.h"

#include <fmt/format.h>

#include "platform/platform.h"

namespace karno::platform::objc {
namespace {

Error exceptionError(std::int64_t code, std::string description) {
  return Error(std::string(kExceptionErrorDomain), code,
               {{std::string(kLocalizedDescriptionKey), std::move(description)}});
}

}  // namespace

Error errorFromException(std::string_view doing) {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exceptionError(kStandardExceptionCode, fmt::format("{}: {}", doing, exception.what()));
  } catch (...) {
    return exceptionError(kForeignExceptionCode, fmt::format("{}: an exception was raised", doing));
  }
}

void logException(std::string_view doing) noexcept {
  try {
    host().consoleLog.log(errorFromException(doing).localizedDescription());
  } catch (...) {
    // Out of memory or without a log there is nobody left to tell.
  }
}

}  // namespace karno::platform::objc
