#pragma once
#include <string>

namespace karno::karnoctl {

// How long something has lasted, in its two largest units, rounded down: "42 s", "3 min", "2 h 5 min",
// "12 d 4 h". Nothing is shorter than "0 s".
std::string durationText(double seconds);

}  // namespace karno::karnoctl
