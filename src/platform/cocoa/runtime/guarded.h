#pragma once
#include <exception>
#include <optional>
#include <string_view>
#include <type_traits>

#include "platform/error.h"

namespace karno::platform::objc {

inline constexpr std::string_view kExceptionErrorDomain = "KarnoExceptionErrorDomain";
inline constexpr std::int64_t kForeignExceptionCode = 1;   // an NSException
inline constexpr std::int64_t kStandardExceptionCode = 2;  // a C++ exception

// The error that stands for the exception being handled. Only inside a catch block.
Error errorFromException(std::string_view doing);

// Runs `work` and turns whatever it throws, C++ or Objective-C, into an error. `doing` says in a few words
// what was tried and begins the error's text. Answers std::optional<Error> for work without a result, else
// Result.
template <class Work>
auto guarded(std::string_view doing, Work&& work) {
  using Answer = std::invoke_result_t<Work>;
  if constexpr (std::is_void_v<Answer>) {
    try {
      std::forward<Work>(work)();
      return std::optional<Error>();
    } catch (...) {
      return std::optional<Error>(errorFromException(doing));
    }
  } else {
    try {
      return Result<Answer>(std::forward<Work>(work)());
    } catch (...) {
      return Result<Answer>(errorFromException(doing));
    }
  }
}

// Writes the exception being handled to the console log. Only inside a catch block; throws nothing.
void logException(std::string_view doing) noexcept;

// Runs `work`; what it throws is written to the console log.
template <class Work>
void guardedAndLogged(std::string_view doing, Work&& work) {
  try {
    std::forward<Work>(work)();
  } catch (...) {
    logException(doing);
  }
}

}  // namespace karno::platform::objc
