#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"

namespace karno::installer {

// What stands in the way of an update. The numbers are part of what the program prints.
enum class FailureCode {
  LengthDiffers = 2001,
  Unpacking = 3000,
  Signature = 3001,
  Validation = 3002,
  NotNewer = 4006,
};

struct Failure {
  FailureCode code = FailureCode::Unpacking;
  std::string text;  // a sentence for people, in English

  bool operator==(const Failure&) const = default;
};

// Nothing when all went well.
using MaybeFailure = std::optional<Failure>;

template <class T>
using Outcome = platform::Result<T, Failure>;

// A failure to unpack with the system's words for an errno.
Failure systemFailure(int error);

// One line of well-formed UTF-8 for people, whatever bytes came in: others become question marks, and what is
// too long is cut.
std::string oneLine(std::string_view bytes);

}  // namespace karno::installer
