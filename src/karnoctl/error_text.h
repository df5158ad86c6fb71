#pragma once
#include <string>

#include "platform/error.h"

namespace karno::karnoctl {

// The error in a few words, to stand in brackets.
std::string reasonOf(const platform::Error& error);

}  // namespace karno::karnoctl
