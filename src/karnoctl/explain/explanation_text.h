#pragma once
#include <string>

#include "karnoctl/explain/explanation.h"

namespace karno::karnoctl {

// The explanation for people: the outcome first, then what it rests on.
std::string explanationText(const Explanation& explanation);

// How an administrator's value was read: "YES" is on, "" is off, anything that is no text does not count.
std::string readingText(const AdministratorSetting& setting);

}  // namespace karno::karnoctl
