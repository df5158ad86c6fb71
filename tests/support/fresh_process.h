#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace karno::test {

// Runs the scenario in a process of its own, where every singleton starts fresh, and returns its text, with a
// note when an expectation failed there or the process crashed. For tests that have no machine yet.
std::string inFreshProcess(const std::function<std::string()>& scenario);

// Runs the scenario once for each of `count` seeds, each time in a fresh process. Returns "seed N: outcome"
// for every outcome that is not the expected one.
std::vector<std::string> outcomesOtherThan(const std::string& expected, int count,
                                           const std::function<std::string(std::uint64_t seed)>& scenario);

}  // namespace karno::test
