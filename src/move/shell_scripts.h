#pragma once
#include <string>
#include <string_view>

// The shell scripts that finish a move after this process has ended.
namespace karno {

// The text as one word of a shell script.
std::string shellQuotedString(std::string_view text);

// Starts a script that waits, without a limit, until this process has gone, takes the quarantine off the
// bundle at that path and opens it.
void relaunchFromPath(const std::string& destination);

// Starts a script that unmounts the disk image five seconds from now. It stays mounted when that fails.
void detachDiskImageLater(const std::string& device);

}  // namespace karno
