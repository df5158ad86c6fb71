#pragma once
#include <vector>

#include "scenes.h"

namespace karno::screenshots {

// The windows of an update on Linux, as they are when a feed has something to offer and when it has not.
std::vector<Scene> updateScenes();

}  // namespace karno::screenshots
