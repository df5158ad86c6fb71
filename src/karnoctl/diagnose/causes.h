#pragma once
#include <array>
#include <span>
#include <string_view>

namespace karno::karnoctl {

// What a cause is about, of which there may be more to say.
enum class Subject { Other, Build, Fuse };

// Something that can be wrong, how a log shows it, and what to do. Texts of messages are their beginnings.
struct Cause {
  std::string_view name;  // stands in the JSON
  std::array<std::string_view, 3> signs = {};
  std::array<std::string_view, 3> cures = {};  // after which it is over
  Subject about = Subject::Other;
  std::string_view says;
  std::string_view advice;
};

// The most likely to be at the bottom of others first. Those without signs are found by what a whole session
// comes to.
std::span<const Cause> causes();
const Cause& causeOf(std::string_view name);  // one of them

}  // namespace karno::karnoctl
