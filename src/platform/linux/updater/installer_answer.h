#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"

namespace karno::platform::updates {

// What the installer prints while it unpacks, line by line: "progress DONE TOTAL" many times, and at last
// "ready PATH" or "failed CODE TEXT". Other lines count for nothing.
class InstallerAnswer {
 public:
  struct Amount {
    std::uint64_t done = 0;
    std::uint64_t total = 0;
  };

  // The amount when the line tells of progress.
  std::optional<Amount> take(std::string_view line);

  // What it came to; an error when the installer ended without a word.
  Result<std::string> outcome() const;

 private:
  std::optional<std::string> ready_;
  std::optional<Error> failure_;
};

}  // namespace karno::platform::updates
