#pragma once
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/text.h"

namespace karno::platform {

// Dates by ICU. Without a time zone of its own it follows the machine's, which it looks up again when the
// second of the moment differs from that of the moment before.
class IcuDateFormatter final : public DateFormatter {
 public:
  IcuDateFormatter(const std::string& pattern, const icu::Locale& locale,
                   const std::optional<std::string>& timeZone);

  std::string stringFromDate(Date date) const override;

 private:
  void followHost(std::int64_t second) const;

  const bool followsHost_;
  mutable std::mutex mutex_;
  const std::unique_ptr<icu::SimpleDateFormat> format_;
  mutable std::optional<std::int64_t> checkedSecond_;
  mutable std::shared_ptr<const icu::TimeZone> zone_;
};

}  // namespace karno::platform
