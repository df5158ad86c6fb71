#pragma once
#include <string>

namespace karno::platform {

class Workspace {
 public:
  virtual ~Workspace() = default;

  // Shows the file in the file viewer, with the viewer rooted at that folder. Main thread only.
  virtual void selectFile(const std::string& path, const std::string& rootFolder) = 0;

  // Opens the URL in the user's web browser. Any thread; returns without waiting for it. A failure is not
  // told.
  virtual void openURL(const std::string& url) = 0;
};

}  // namespace karno::platform
