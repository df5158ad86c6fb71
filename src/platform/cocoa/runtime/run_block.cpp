#include "platform/cocoa/runtime/run_block.h"

#include <exception>
#include <string>

#include "platform/cocoa/runtime/threads.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

void runBlock(const Block& block, std::string_view owner) {
  const cocoa::ThreadPoolScope scope;
  try {
    block();
  } catch (const std::exception& failure) {
    writeConsoleLine(std::string(owner) + ": a block threw an exception: " + failure.what());
  } catch (...) {
    writeConsoleLine(std::string(owner) + ": a block threw an exception");
  }
}

}  // namespace karno::platform
