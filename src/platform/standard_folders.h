#pragma once
#include <string>
#include <vector>

namespace karno::platform {

enum class StandardFolder { Applications, Downloads };

// Where a Mac keeps things for the user, this machine, the network and the system itself: its four domains.
// Safe from any thread. Folders are named whether or not they exist.
class StandardFolders {
 public:
  virtual ~StandardFolders() = default;

  // The folders of that kind in all domains, in the platform's order.
  virtual std::vector<std::string> inAllDomains(StandardFolder folder) const = 0;

  // The Applications folder of this machine, for all its users.
  virtual std::string localApplications() const = 0;
};

}  // namespace karno::platform
