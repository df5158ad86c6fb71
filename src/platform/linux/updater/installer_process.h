#pragma once
#include <chrono>

#include "platform/bundles.h"
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

// How long an installer that unpacks is waited for.
struct InstallerWaits {
  std::chrono::milliseconds look{100};         // between two questions whether the work is still wanted
  std::chrono::milliseconds ending{5000};      // from SIGTERM to SIGKILL
  std::chrono::milliseconds silence{1800000};  // without a line; a large archive is verified without any
};

// Runs the bundle's own "Contents/Helpers/karno-installer", so that what a downloaded archive does to the
// reader of archives is done to a process that owns nothing.
class InstallerProcess final : public UpdateInstaller {
 public:
  explicit InstallerProcess(const Bundles& bundles, InstallerWaits waits = {})
      : bundles_(bundles), waits_(waits) {}

  Result<std::string> unpack(const UnpackRequest& request, const Progress& progress) override;
  std::optional<Error> installAfterQuit(const InstallOrder& order) override;
  std::optional<Result<InstallVerdict>> takeVerdict(const std::string& bundle) override {
    return takeInstallVerdict(bundle);
  }

 private:
  std::string program() const {
    return bundles_.mainBundle().bundlePath() + "/Contents/Helpers/karno-installer";
  }

  const Bundles& bundles_;
  const InstallerWaits waits_;
};

}  // namespace karno::platform::updates
