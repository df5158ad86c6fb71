#pragma once
#include <string>
#include <string_view>

#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Whether that program of the bundle is there, may be executed and is one of this machine: of its processor
// on Linux, of every processor of a Mac, and signed, on macOS.
void checkProgram(const CheckedBundle& bundle, const std::string& file, std::string_view cost);

}  // namespace karno::karnoctl
