#pragma once
#include <string>

namespace karno::platform {

class Identifiers {
 public:
  virtual ~Identifiers() = default;

  // A fresh random UUID: 36 characters, upper-case hexadecimal digits in groups of 8-4-4-4-12. Any thread.
  virtual std::string makeUUID() = 0;
};

}  // namespace karno::platform
