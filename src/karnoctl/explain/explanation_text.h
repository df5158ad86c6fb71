#pragma once
#include <string>

#include "karnoctl/explain/explanation.h"
#include "karnoctl/json_text.h"

namespace karno::karnoctl {

// The explanation for people: the outcome first, then what it rests on. Without UTF-8 its marks are ASCII.
std::string explanationText(const Explanation& explanation, bool isUTF8 = true);

// The same for scripts, and parts of it that others tell as well.
std::string explanationJson(const Explanation& explanation);
const char* nameOf(ChoiceRule rule);
Json settingsJson(const Explanation& explanation);

// Why a build is chosen.
std::string choiceReason(ChoiceRule rule);

// Which macFUSE is there, and which would do: "macFUSE 4.0.4 is there; 4.4.1 or later would do".
std::string fuseText(const Explanation& explanation);

// How an administrator's value was read: "YES" is on, "" is off, anything that is no text does not count.
std::string readingText(const AdministratorSetting& setting);

}  // namespace karno::karnoctl
