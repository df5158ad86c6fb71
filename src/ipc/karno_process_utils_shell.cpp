#include <fmt/format.h>

#include "ipc/karno_process_utils.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "platform/text/utf8.h"
#include "util/string_utils.h"

namespace karno {
namespace {

// The inner shell reads no profile, so what a user put there cannot print into our output.
std::string shellLineFor(const std::string& command) {
  std::string escaped;
  for (const char c : command) {
    if (c == '"') escaped += '\\';
    escaped += c;
  }
  return fmt::format("/bin/sh --noprofile -c \"{}\"", escaped);
}

// On a Mac as well, whose own 8-bit encoding depends on the user's language: what is read of commands is
// ASCII, which is the same in all of them.
std::string textOfLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) platform::appendUTF8(text, static_cast<unsigned char>(byte));
  return text;
}

}  // namespace

bool KarnoProcessUtils::executeCommand(const std::string& command, std::vector<std::string>* output,
                                       bool trimOutput, std::optional<Error>* error) {
  const std::string line = shellLineFor(command);
  auto pipe = platform::host().shell.open(line);
  if (!pipe) {
    KarnoLog::manager().logWarn(fmt::format("Utilities:: Unable to open command ({})", line));
    if (error != nullptr) {
      *error = Error(std::string(platform::kPOSIXErrorDomain), pipe.error().code(),
                     {{std::string(platform::kLocalizedDescriptionKey), "failed to run command"}});
    }
    return false;
  }
  while (const auto piece = pipe.value()->readPiece()) {
    if (output == nullptr) continue;
    std::string text = textOfLatin1(*piece);
    output->push_back(trimOutput ? trimmingWhitespaceAndNewlines(text) : std::move(text));
  }
  if (!pipe.value()->close()) {
    KarnoLog::manager().logWarn(fmt::format("Utilities:: Command Failed ({})", line));
    return false;
  }
  return true;
}

void KarnoProcessUtils::runInMainThread(platform::Block block) {
  platform::host().dispatch.mainQueue().async(std::move(block));
}

void KarnoProcessUtils::runOnBackgroundThread(platform::Block block) {
  const auto queue = platform::host().dispatch.makeSerialQueue("it.vantul.KarnoWrapper.bg." +
                                                               platform::host().identifiers.makeUUID());
  runOnBackgroundQueue(*queue, std::move(block));
}

void KarnoProcessUtils::runOnBackgroundQueue(platform::Queue& queue, platform::Block block) {
  queue.async(std::move(block));
}

}  // namespace karno
