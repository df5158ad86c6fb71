#pragma once
#include <stdlib.h>

#include <optional>
#include <string>

namespace karno::test {

// Sets an environment variable, or removes it, and puts the old state back.
class ScopedEnvironment {
 public:
  ScopedEnvironment(std::string name, std::optional<std::string> value) : name_(std::move(name)) {
    if (const char* before = ::getenv(name_.c_str())) before_ = before;
    set(value);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment() { set(before_); }

  void set(const std::optional<std::string>& value) const {
    if (value) {
      ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }

 private:
  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace karno::test
