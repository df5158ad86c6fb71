#pragma once
#include <memory>

#include "platform/platform.h"

namespace karno::simulation {

class World;

// The services of the fake machine with the world in front of each: every call goes through it.
class Services {
 public:
  explicit Services(World& world);
  ~Services();
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  platform::Platform& platform();

 private:
  struct All;
  std::unique_ptr<All> all_;
};

}  // namespace karno::simulation
