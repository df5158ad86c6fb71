#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karno::simulation {

// Something that the launcher can log: "{}" stands for what is put in. `threads` are the beginnings of the
// names of those on which it is logged, with bars between them; empty for any.
struct LineKind {
  std::string_view name;
  std::string_view level;  // empty for what goes to the console alone
  std::string_view pattern;
  std::string_view threads;
};

// Null for what the launcher never logs.
const LineKind* kindOf(std::string_view level, std::string_view message);

// All that one block of a queue, one thread or one press of a button logs: names of lines, "(a|b)" for one of
// several, "?" for what may be left out, "*" for what comes as often as it likes, and "$name" for a piece of
// a story that has a name.
struct Story {
  std::string_view name;
  std::string_view lines;
};

std::span<const Story> stories();

// The names of the lines that no story has.
std::vector<std::string> linesWithoutStory();

// The story that those lines are, or the beginning of when the block was cut off; null when there is none.
const Story* storyOf(const std::vector<const LineKind*>& lines, bool isWhole);

}  // namespace karno::simulation
