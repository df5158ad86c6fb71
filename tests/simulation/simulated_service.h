#pragma once
#include <type_traits>
#include <utility>

#include "world.h"

namespace karno::simulation {

inline constexpr const char* kOpen = "/usr/bin/open";
inline constexpr const char* kGarbage = "ProductName: a: b\n\xff nonsense";

using platform::Error;
using platform::Result;
using Fakes = test::FakePlatform;
using How = Fault::How;

// A service of the fake machine with the world in front of it.
template <class Port, auto kFake>
class Of : public Port {
 public:
  explicit Of(World& world) : world_(world), fake_(world.machine.*kFake) {}

 protected:
  World& world_;
  std::remove_reference_t<decltype(std::declval<Fakes&>().*kFake)>& fake_;
};

}  // namespace karno::simulation
