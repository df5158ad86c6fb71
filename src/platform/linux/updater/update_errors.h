#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/error.h"

// The errors of an update, with the domain and the codes that the updater framework of a Mac has.
namespace karno::platform::updates {

inline constexpr std::string_view kUpdateErrorDomain = "SUSparkleErrorDomain";

enum class UpdateErrorCode : std::int64_t {
  NoPublicKey = 1,
  InsecureFeedURL = 3,
  InvalidFeedURL = 4,
  InvalidHostIdentifier = 6,
  InvalidHostVersion = 7,
  FeedParse = 1000,
  NoUpdate = 1001,
  Feed = 1002,
  TemporaryFolder = 2000,
  Download = 2001,
  Unpacking = 3000,
  Signature = 3001,
  Validation = 3002,
  Installation = 4005,
  Cancelled = 4007,
  NoWritePermission = 4012,
};

inline Error updateError(UpdateErrorCode code, std::string message) {
  return Error(std::string(kUpdateErrorDomain), static_cast<std::int64_t>(code),
               {{std::string(kLocalizedDescriptionKey), std::move(message)}});
}

}  // namespace karno::platform::updates
