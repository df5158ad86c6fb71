#include "platform/linux/text/icu_text.h"
#include "text_rules.h"

namespace karno::test {

std::unique_ptr<platform::Text> textRules(const std::string& locale, const std::string& timeZone) {
  return std::make_unique<platform::IcuText>(locale, timeZone);
}

}  // namespace karno::test
