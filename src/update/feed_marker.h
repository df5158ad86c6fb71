#pragma once
#include <string>

#include "platform/platform.h"

namespace karno {

// The file by which somebody points this user's launcher at another update feed: empty for the debug feed, or
// with the URL of any. Mostly there is none.
inline std::string feedMarkerPath() { return platform::host().files.homeDirectory() + "/KARNOUPGRADE.debug"; }

}  // namespace karno
