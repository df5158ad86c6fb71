#pragma once
#include "platform/bundles.h"
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

// Runs the bundle's own "Contents/Helpers/karno-installer", so that what a downloaded archive does to the
// reader of archives is done to a process that owns nothing.
class InstallerProcess final : public UpdateInstaller {
 public:
  explicit InstallerProcess(const Bundles& bundles) : bundles_(bundles) {}

  Result<std::string> unpack(const UnpackRequest& request, const Progress& progress) override;
  std::optional<Error> installAfterQuit(const std::string& newBundle, const std::string& bundle,
                                        bool relaunch) override;

 private:
  std::string program() const {
    return bundles_.mainBundle().bundlePath() + "/Contents/Helpers/karno-installer";
  }

  const Bundles& bundles_;
};

}  // namespace karno::platform::updates
