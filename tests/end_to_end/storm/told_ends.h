#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

namespace karno::test {

// An end that a child was given, as the log is to tell it.
struct GivenEnd {
  std::string text;          // "status:9, reason:2"
  bool mayBeUntold = false;  // the launcher was on its way out already
};

// What the log of one launcher breaks of the rules, in words; `ends` in the order in which they were given.
std::vector<std::string> brokenRules(const std::vector<std::string>& log, const std::vector<GivenEnd>& ends);

// Whether the launcher has given a reason to end.
bool saysItLeaves(const std::vector<std::string>& log);

// How many children the log says were launched.
std::size_t launchesIn(const std::vector<std::string>& log);

}  // namespace karno::test
