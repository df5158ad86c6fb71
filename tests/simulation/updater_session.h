#pragma once
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/updater.h"

namespace karno::simulation {

class World;

// An updater with every end that a session can have: "nothing", "skip", "dismiss", "odd choice",
// "download cancelled", "download fails", "unpacking fails", "installs", "no feed". It calls its delegate as
// the framework of a Mac does; or it is the one of Linux, on services that are made up.
class UpdaterSession final : public platform::Updaters {
 public:
  explicit UpdaterSession(World& world);
  ~UpdaterSession() override;

  std::unique_ptr<platform::Updater> makeUpdater(platform::UpdaterDelegate& delegate) override;

  // A session that the updater begins by itself, unless one goes on.
  void beginScheduled(const std::string& end, double pauseSeconds);

  // How those end that the user asks for, in their order; without one, with nothing found.
  void planRequested(std::string end, double pauseSeconds) {
    requested_.push_back({std::move(end), pauseSeconds});
  }

  bool isAtWork() const;

  bool isOfLinux = false;
  bool canStart = true;
  bool canCheck = true;

 private:
  class Handle;
  class Linux;
  struct Planned {
    std::string end;
    double pauseSeconds;
  };

  void begin(const Planned& planned);
  void live(const Planned& planned);
  void step(const Planned& planned, const std::function<void()>& block);
  void over(const Planned& planned, const std::string& why);

  World& world_;
  platform::UpdaterDelegate* delegate_ = nullptr;
  platform::Updater* updater_ = nullptr;
  std::deque<Planned> requested_;
  std::unique_ptr<Linux> linux_;
  bool isStarted_ = false;
  bool inSession_ = false;
};

}  // namespace karno::simulation
