#pragma once
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>

namespace karno::platform {

// What the platform itself has to say in the launcher's log, such as that a connection was lost. Any thread.
// A service tells it while it holds no lock, since the log asks services in its turn.
class Notices {
 public:
  enum class Level { Information, Warning };
  using Taker = std::function<void(Level, std::string_view line)>;

  // `taker` has the lines until somebody else wants them. No taker throws.
  explicit Notices(Taker taker);

  // From now on they go there. One that is being told at this moment may still go the former way.
  void setTaker(Taker taker);

  void inform(std::string_view line) { tell(Level::Information, line); }
  void warn(std::string_view line) { tell(Level::Warning, line); }

 private:
  void tell(Level level, std::string_view line);

  std::mutex mutex_;
  std::shared_ptr<const Taker> taker_;
};

}  // namespace karno::platform
