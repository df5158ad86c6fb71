#pragma once
#include <functional>
#include <string>
#include <vector>

#include "table.h"

namespace karno::screenshots {

// One window or alert of the launcher as a user meets it.
struct Scene {
  std::string name;  // also the name of its picture
  std::function<void(const Table&)> show;
};

// On the main thread of an application that has launched. A window stays; an alert returns when it was
// answered.
const std::vector<Scene>& allScenes();

}  // namespace karno::screenshots
