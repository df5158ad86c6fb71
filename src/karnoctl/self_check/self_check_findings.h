#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace karno::karnoctl {

// What a self-check has found. Each is one plain sentence.
struct SelfCheckFindings {
  std::vector<std::string> wrong;
  std::vector<std::string> notes;  // worth knowing, but nothing is wrong

  // What was looked at.
  std::size_t programs = 0;
  std::size_t propertyLists = 0;
  std::size_t tables = 0;
  std::size_t messages = 0;
};

}  // namespace karno::karnoctl
