#pragma once
#include <string>
#include <string_view>

// What session and updater both tell and ask.
namespace karno::platform::updates {

// A text of the main bundle's Info.plist; empty without one.
std::string infoText(std::string_view key);

// An alert with one button, in the main thread's next turn. Any thread.
void tellUser(const std::string& message, const std::string& explanation, const std::string& button);

}  // namespace karno::platform::updates
