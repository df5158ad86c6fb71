#pragma once
#include <array>
#include <span>
#include <string_view>

namespace karno::karnoctl {

// What more there is to say of a cause in a session.
enum class Detail { None, Choice, Fuse, Question, ClientEnd, Starts };

// Something that can be wrong, how a log shows it, and what to do. Texts of messages are their beginnings.
struct Cause {
  std::string_view name;  // stands in the JSON
  std::array<std::string_view, 3> signs = {};
  std::array<std::string_view, 3> cures = {};  // after which it is over
  Detail tells = Detail::None;
  std::string_view says;
  std::string_view advice;
};

// The most likely to be at the bottom of others first. Those without signs are found by what a whole session
// comes to.
std::span<const Cause> causes();

// One of the table.
const Cause& causeOf(std::string_view name);

}  // namespace karno::karnoctl
