#pragma once
#include <cstdint>
#include <string>

#include "installer/archive/failure.h"
#include "installer/archive/safe_path.h"

namespace karno::installer {

// Told again and again while an archive is unpacked.
class ExtractionObserver {
 public:
  virtual ~ExtractionObserver() = default;

  // `bytesRead`: of the archive. False stops the work, which then fails.
  virtual bool goesOn(std::uint64_t bytesRead) = 0;
};

// Unpacks an archive into an empty folder and gives the name of the one bundle that it holds, an "*.app"
// folder at the top. Refused as a whole when an entry is neither file, folder nor symbolic link, would come
// to lie outside of the bundle, leads out of it, comes twice, or is over a limit. Owners and times are not
// restored. On failure what has been unpacked stays in the folder.
Outcome<std::string> extractBundle(int archive, int folder, const UnpackLimits& limits,
                                   ExtractionObserver& observer);

}  // namespace karno::installer
