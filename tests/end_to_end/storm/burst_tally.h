#pragma once
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace karno::test {

// What a launcher's console says of a burst of notifications, up to the user's wish to quit.
struct BurstTally {
  // Of unknown messages such as "north-00017": the numbers in the order in which they were received, by
  // sender.
  std::map<std::string, std::vector<int>> numbers;

  // How often automatic updates were switched on.
  std::size_t switchedOn = 0;

  // Received lines that were not followed at once by the line of what was done about them.
  std::size_t withoutConsequence = 0;
};

BurstTally tallyOf(const std::string& console);

}  // namespace karno::test
