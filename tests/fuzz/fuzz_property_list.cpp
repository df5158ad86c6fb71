#include <string>
#include <string_view>

#include "fuzz_target.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/property_lists.h"

namespace karno::fuzz {
namespace {

using platform::propertyListXML;
using platform::Value;

// Written and read again it stays what it is. Texts are compared, because a number that is none equals
// nothing.
void checkAgain(const Value& value) {
  const auto text = propertyListXML(value);
  mustHold(bool{text}, "what is read can be written");
  if (text.value().size() > platform::lists::kPropertyListSizeBytesMax) return;
  const auto again = platform::parsePropertyList(text.value());
  mustHold(bool{again}, "what is written can be read");
  mustHold(propertyListXML(again.value()).value() == text.value(), "both are the same");
}

void check(std::string_view bytes) {
  if (const auto list = platform::parsePropertyList(bytes)) checkAgain(list.value());
  if (const auto archive = platform::unarchiveDictionary(bytes)) checkAgain(Value(archive.value()));
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
