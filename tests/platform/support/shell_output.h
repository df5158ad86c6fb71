#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/shell.h"

namespace karno::test {

// What a shell line printed, piece by piece, and whether its end could be learnt.
struct ShellOutput {
  std::vector<std::string> pieces;
  bool isClosed = false;
};

inline ShellOutput outputOf(platform::ShellPipe& pipe) {
  ShellOutput output;
  while (std::optional<std::string> piece = pipe.readPiece()) output.pieces.push_back(std::move(*piece));
  output.isClosed = pipe.close();
  return output;
}

inline ShellOutput outputOf(platform::Shell& shell, const std::string& line) {
  auto pipe = shell.open(line);
  return pipe ? outputOf(*pipe.value()) : ShellOutput{.pieces = {pipe.error().description()}};
}

}  // namespace karno::test
