#pragma once
#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>

#include "installer/swap.h"
#include "platform/linux/files/folder_exchange.h"

namespace karno::installer {

inline constexpr std::chrono::seconds kGiveUpAfter{600};

// An update is unpacked in a folder of this kind, which is removed once the update is in its place or given
// up.
inline constexpr std::string_view kStagingPrefix = ".karno-update-";

struct InstallRequest {
  std::string newBundle;
  std::string bundle;
  pid_t after = 0;  // the process that has to end first
  std::chrono::seconds giveUpAfter = kGiveUpAfter;
};

struct InstallEnd {
  bool isInstalled = false;
  std::string complaint;  // one sentence; may also tell of an old bundle that could not be removed
};

// Waits for the process, puts the new bundle where the present one is, looks at it there and takes it back
// when it turns out no update, and only once all that is on the disk removes the old bundle and the staging
// folder. A kill at any instant leaves a whole bundle in the place, the old or the new one; see Swap for file
// systems without an exchange. Where one of the bundles is missing, or both cannot be swapped, nothing is
// touched.
InstallEnd installUpdate(const InstallRequest& request,
                         const Exchange& exchange = platform::exchangeInOneStep);

}  // namespace karno::installer
