#pragma once
#include <functional>
#include <string>
#include <vector>

namespace karno::screenshots {

// One window or alert of the launcher as a user meets it.
struct Scene {
  std::string name;  // also the name of its picture
  std::function<void()> show;
};

// Shown by the launcher's own code, on the main thread of an application that has launched. Some come up a
// little later. The texts are in the language of the environment.
const std::vector<Scene>& allScenes();

}  // namespace karno::screenshots
