#pragma once
#include <memory>
#include <string>

#include "platform/text.h"

namespace karno::test {

// The rules that FakeText goes by, for identifiers such as "de_DE" and "America/New_York". Which file defines
// it is up to the test program.
std::unique_ptr<platform::Text> textRules(const std::string& locale, const std::string& timeZone);

}  // namespace karno::test
