#pragma once
#include <sdbus-c++/IConnection.h>

#include <memory>

namespace karno::platform {

// Closes the connection at once; what the bus has not taken is dropped. Destroying the object alone would
// wait, without a limit, until a bus that stands still has taken everything.
void abandon(std::unique_ptr<sdbus::IConnection>& connection);

}  // namespace karno::platform
