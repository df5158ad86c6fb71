#pragma once
#include <string>

namespace karno::platform {

// The user's home folder without a "/" at the end: HOME, else what the account database says, else "/".
std::string homeFolder();

// The user's account name: what the account database says, else USER, else the number.
std::string userName();

}  // namespace karno::platform
