#include "command_line/closest_word.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace karno::command_line {
namespace {

// Longer words are no slips of the hand, and the work grows with the square of the length.
constexpr std::size_t kLengthMax = 100;

// How many letters have to be changed, added or left out to get from one word to the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::optional<std::string_view> closestWord(std::string_view word,
                                            std::span<const std::string_view> candidates) {
  if (word.size() > kLengthMax) return std::nullopt;
  std::optional<std::string_view> best;
  std::size_t bestDistance = 0;
  for (const std::string_view candidate : candidates) {
    const std::size_t distance = editDistance(word, candidate);
    if (distance > (candidate.size() + 2) / 3) continue;
    if (!best || distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

std::string suggestion(std::string_view word, std::span<const std::string_view> candidates) {
  const auto closest = closestWord(word, candidates);
  return closest ? "; did you mean '" + std::string(*closest) + "'?" : std::string();
}

}  // namespace karno::command_line
