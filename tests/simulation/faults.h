#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace karno::simulation {

// How an operation of a service goes wrong: it fails with that number, comes late by so many seconds, does
// half of its work and then fails, or answers something odd.
struct Fault {
  enum class How { Fails, Late, Half, Odd };

  std::string operation;  // "Files::move"
  How how = How::Fails;
  int number = 0;               // an errno value, or seconds
  std::uint64_t firstCall = 1;  // which call is the first that it hits
  std::uint64_t callsMax = 1;   // how many it hits
  std::uint64_t calls = 0;      // that there were

  // Counts a call; whether it is hit.
  bool hits() { return ++calls >= firstCall && calls < firstCall + callsMax; }
};

// "Files::move fails 28", from the call of that number on, "for ever" unless "once" follows.
Fault faultOf(const std::string& text, double firstCall);

}  // namespace karno::simulation
