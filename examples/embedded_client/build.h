#pragma once
#include <string>
#include <string_view>

namespace karno::client {

// Which of the two builds of the client this is.
struct Build {
  std::string name;         // the bundle's name, "Karno.app"
  std::string description;  // how it presents the drives, for people
  bool operator==(const Build&) const = default;
};

// Tells it from the name of the bundle that the program lies in.
Build buildForBundlePath(std::string_view bundlePath);

}  // namespace karno::client
