#pragma once
#include <string>

#include "platform/posix/scoped_descriptor.h"

namespace karno::appcast {

// A folder among the temporary files that nobody else may enter. It goes with all that it holds.
class Workplace {
 public:
  // A Failure when it cannot be made.
  Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;
  ~Workplace();

  const std::string& path() const { return path_; }
  int folder() const { return folder_.get(); }

 private:
  std::string path_;
  platform::ScopedDescriptor folder_;
};

}  // namespace karno::appcast
