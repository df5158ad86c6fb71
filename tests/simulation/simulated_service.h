#pragma once
#include "world.h"

namespace karno::simulation {

inline constexpr const char* kOpen = "/usr/bin/open";
inline constexpr const char* kGarbage = "ProductName: a: b\n\xff nonsense";

using platform::Error;
using platform::Result;
using How = Fault::How;

// A service with the world in front of it.
template <class Port>
class Of : public Port {
 public:
  explicit Of(World& world) : world_(world) {}

 protected:
  World& world_;
};

}  // namespace karno::simulation
