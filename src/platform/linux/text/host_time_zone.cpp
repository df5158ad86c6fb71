#include "platform/linux/text/host_time_zone.h"

#include <sys/stat.h>

#include <cstdlib>

#include "platform/never_destroyed.h"

namespace karno::platform {

HostTimeZone& HostTimeZone::instance() {
  static NeverDestroyed<HostTimeZone> zone;
  return zone.get();
}

std::shared_ptr<const icu::TimeZone> HostTimeZone::current() {
  const std::scoped_lock lock(mutex_);
  Setting setting = settingNow();
  if (zone_ == nullptr || setting != setting_) {
    zone_.reset(icu::TimeZone::detectHostTimeZone());
    setting_ = std::move(setting);
  }
  return zone_;
}

HostTimeZone::Setting HostTimeZone::settingNow() {
  Setting setting;
  if (const char* variable = std::getenv("TZ")) setting.variable = variable;

  struct stat status = {};
  if (::stat("/etc/localtime", &status) == 0) {
    setting.device = status.st_dev;
    setting.inode = status.st_ino;
    setting.modifiedSeconds = status.st_mtim.tv_sec;
    setting.modifiedNanoseconds = status.st_mtim.tv_nsec;
  }
  return setting;
}

}  // namespace karno::platform
