#pragma once
#include <mutex>
#include <string>

#include "platform/cocoa/runtime/objc.h"
#include "platform/text.h"

namespace karno::platform {

// NSDateFormatter with the user's locale and time zone, followed while they change. What it raises is written
// to the console log and gives an empty text.
class FoundationDateFormatter final : public DateFormatter {
 public:
  explicit FoundationDateFormatter(const std::string& pattern);
  std::string stringFromDate(Date date) const override;

 private:
  mutable std::mutex mutex_;  // one thread at a time may use an NSDateFormatter of 10.14
  objc::Object formatter_;
};

}  // namespace karno::platform
