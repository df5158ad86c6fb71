#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "spoken_program.h"

namespace karno::bench {

// A program that hears notifications and writes a line for each.
struct Receiver {
  std::vector<std::string> command;
  std::string ready;   // in the line by which it says that it listens
  std::string object;  // of the notifications that it hears; no other receiver is woken by them

  static Receiver launcher();
  static Receiver bareObserver();

  // Throws when it does not start; it has come to rest then.
  std::unique_ptr<SpokenProgram> start() const;
};

// Posts no message that the launcher knows, so that nothing follows from it but a line that says so. Throws
// when it cannot.
void postNumber(const Receiver& receiver, int number);

// When the receiver's line was read. Throws when none comes.
std::int64_t received(SpokenProgram& program, int number);

// Posts from a thread of its own, so that the lines are read meanwhile, and gives when the last was read.
std::int64_t postAndRead(const Receiver& receiver, SpokenProgram& program, int first, int count);

}  // namespace karno::bench
