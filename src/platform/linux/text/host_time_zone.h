#pragma once
#include <unicode/timezone.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace karno::platform {

// The machine's time zone as ICU knows it, followed while it changes: by the variable TZ, or by
// /etc/localtime becoming another file. One per process, since finding it goes through process-wide state of
// ICU and of the C library. Safe from any thread; lives for ever.
class HostTimeZone {
 public:
  static HostTimeZone& instance();

  // The zone now. Costs one stat() when nothing changed.
  std::shared_ptr<const icu::TimeZone> current();

 private:
  // What tells one zone setting from another.
  struct Setting {
    std::optional<std::string> variable;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    bool operator==(const Setting&) const = default;
  };
  static Setting settingNow();

  std::mutex mutex_;
  Setting setting_;
  std::shared_ptr<const icu::TimeZone> zone_;
};

}  // namespace karno::platform
