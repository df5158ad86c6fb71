#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace karno::karnoctl {

// Takes a user out of texts that leave the machine: the home folder becomes "~", also as a URL and as JSON
// may spell it, and the name "USER" wherever it is a word of its own.
class Disguise {
 public:
  // Those that are empty, and "/", are left out.
  Disguise(const std::vector<std::string>& homes, const std::vector<std::string>& names);

  std::string of(std::string text) const;

 private:
  std::vector<std::string> homes_;
  std::vector<std::string> names_;
};

}  // namespace karno::karnoctl
