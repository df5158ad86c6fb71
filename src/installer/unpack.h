#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "installer/archive/extraction.h"
#include "installer/archive/failure.h"

namespace karno::installer {

struct UnpackRequest {
  std::string archive;
  std::optional<std::uint64_t> lengthInBytes;
  std::string signature;  // base64
  std::string publicKey;  // base64
  std::string bundle;     // the one that is to be updated
  std::string into;       // an empty folder that nobody else may enter
  UnpackLimits limits = {};
};

// Checks the archive's length and signature, then unpacks it and checks that it holds an update of the
// bundle. Gives the path of the unpacked bundle; all of it has reached the disk by then. After a failure the
// folder is empty again, unless it was not at the beginning.
Outcome<std::string> unpackUpdate(const UnpackRequest& request, ExtractionObserver& observer);

}  // namespace karno::installer
