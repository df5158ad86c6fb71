#include <string>
#include <string_view>

#include "fuzz_target.h"
#include "platform/linux/files/install_verdict.h"
#include "platform/text/utf8.h"

namespace karno::fuzz {
namespace {

// What is read is fit for an alert and a line of the log, and would be read again as it is.
void check(std::string_view bytes) {
  const auto verdict = platform::parseInstallVerdict(bytes);
  if (!verdict) return;
  mustHold(bytes.size() <= platform::kInstallVerdictBytesMax, "what is read is bounded");
  mustHold(!verdict->reason.empty(), "a verdict has a reason");
  const std::string text = platform::installVerdictText(*verdict);
  mustHold(platform::isValidUTF8(text), "a verdict is text");
  for (const char c : verdict->version + verdict->reason)
    mustHold(static_cast<unsigned char>(c) >= ' ' && c != '\x7F', "a verdict has no control characters");
  if (text.size() <= platform::kInstallVerdictBytesMax)
    mustHold(platform::parseInstallVerdict(text) == verdict, "a verdict reads back as it was");
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
