#pragma once
#include <memory>

#include "platform/application.h"

namespace karno {

// The launcher's main interface: one AppDelegate and one MainWindow, connected. What it returns keeps both
// alive.
std::shared_ptr<platform::ApplicationDelegate> loadMainInterface();

}  // namespace karno
