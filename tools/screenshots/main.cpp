#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "scenes.h"

namespace karno::screenshots {
namespace {

// Shows its scene when the application has launched and leaves it there until the process is ended.
class SceneDelegate final : public platform::ApplicationDelegate {
 public:
  explicit SceneDelegate(const Scene& scene) : scene_(scene) {}

  // Through the queue, since an alert holds up its caller until it is answered.
  void applicationDidFinishLaunching() override {
    platform::host().application.activateIgnoringOtherApps();
    platform::host().dispatch.mainQueue().async([this] { show(); });
  }
  void applicationWillTerminate() override {}

 private:
  void show() {
    try {
      scene_.show();
    } catch (const std::exception& failure) {
      std::fprintf(stderr, "screenshots: %s\n", failure.what());
      platform::host().application.terminate();
    }
  }

  const Scene& scene_;
};

int run(int argc, char** argv) {
  const std::vector<Scene>& scenes = allScenes();
  if (argc == 2 && std::string_view(argv[1]) == "--list") {
    for (const Scene& scene : scenes) std::printf("%s\n", scene.name.c_str());
    return 0;
  }
  const std::string name = argc == 2 ? argv[1] : "";
  const auto scene = std::ranges::find(scenes, name, &Scene::name);
  if (scene == scenes.end()) throw std::runtime_error("usage: karno_screenshots --list | SCENE");
  return platform::applicationMain(argc, argv, [&scene] { return std::make_shared<SceneDelegate>(*scene); });
}

}  // namespace
}  // namespace karno::screenshots

int main(int argc, char** argv) {
  try {
    return karno::screenshots::run(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "screenshots: %s\n", failure.what());
    return 2;
  }
}
