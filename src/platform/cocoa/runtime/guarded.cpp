#include "platform/cocoa/runtime/guarded.h"

#include <fmt/format.h>

#include "platform/cocoa/runtime/raised_exception.h"
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
    const std::string raised = takeRaised();
    return exceptionError(kForeignExceptionCode,
                          fmt::format("{}: {}", doing, raised.empty() ? "an exception was raised" : raised));
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
