#pragma once

namespace karno::client {

// The ways in which the client can misbehave for a launcher that is being tried out.

// Ends the process on the spot, without telling anybody.
[[noreturn]] void endWithStatus(int status);

// Ends the process with SIGABRT. No core file is written.
[[noreturn]] void crash();

// From now on SIGTERM has no effect on this process.
void ignoreTerminationSignal();

}  // namespace karno::client
