#pragma once
#include <optional>
#include <string>

#include "platform/never_destroyed.h"

namespace karno {

// Which processor and which macOS the launcher runs on, as two shell commands tell. Gathered once, on the
// thread of the first instance() call, which takes as long as the commands; never refreshed, also after a
// failure.
class KarnoOSInfoManager {
 public:
  static KarnoOSInfoManager& instance();

  // Do nothing more once builtOSInfo() is true. Called by instance().
  void buildAllInformation();
  void buildSoftwareVersion();
  void buildCpuInfo();

  bool isIntel64() const { return isIntel64_; }
  bool isArm64() const { return isArm64_; }
  bool builtOSInfo() const { return builtOSInfo_; }

  // Absent when the command could not be run or did not tell.
  const std::optional<std::string>& cpu() const { return cpu_; }  // "arm64", "x86_64"
  const std::optional<std::string>& productName() const { return productName_; }
  const std::optional<std::string>& productVersion() const { return productVersion_; }  // "14.2.1"
  const std::optional<std::string>& buildVersion() const { return buildVersion_; }      // "23C71"

  // The last failure of the gathering; absent when all went well.
  const std::optional<std::string>& buildErrorMessage() const { return buildErrorMessage_; }

 private:
  friend class platform::NeverDestroyed<KarnoOSInfoManager>;
  KarnoOSInfoManager() { buildAllInformation(); }

  bool isIntel64_ = false;
  bool isArm64_ = false;
  bool builtOSInfo_ = false;
  std::optional<std::string> cpu_;
  std::optional<std::string> productName_;
  std::optional<std::string> productVersion_;
  std::optional<std::string> buildVersion_;
  std::optional<std::string> buildErrorMessage_;
};

}  // namespace karno
