#pragma once
#include <string>

namespace karno::platform {

class Workspace {
 public:
  virtual ~Workspace() = default;

  // Shows the file in the file viewer, with the viewer rooted at that folder. Main thread only.
  virtual void selectFile(const std::string& path, const std::string& rootFolder) = 0;
};

}  // namespace karno::platform
