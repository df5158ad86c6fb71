#pragma once
#include <unicode/timezone.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace karno::platform {

// The machine's time zone, followed while it changes: by the variable TZ, or by /etc/localtime becoming
// another file. It is ICU's where ICU has it in its tables. A rule in TZ, such as
// "CET-1CEST,M3.5.0,M10.5.0/3", only the C library understands. One per process, since finding it goes
// through process-wide state of ICU and of the C library. Safe from any thread; lives for ever.
class HostTimeZone {
 public:
  static HostTimeZone& instance();

  // The zone, which tells the right time for that second since 1970 and perhaps for no other. Costs one
  // stat() when nothing changed.
  std::shared_ptr<const icu::TimeZone> at(std::int64_t second);

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
  std::shared_ptr<const icu::TimeZone> zoneOfSetting() const;
  std::shared_ptr<const icu::TimeZone> offsetZoneAt(std::int64_t second);

  std::mutex mutex_;
  bool isKnown_ = false;
  Setting setting_;
  std::shared_ptr<const icu::TimeZone> zone_;        // null: the C library's
  std::shared_ptr<const icu::TimeZone> offsetZone_;  // the C library's offset, as last asked for
};

}  // namespace karno::platform
