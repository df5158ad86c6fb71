#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "printing.h"

namespace karno::test {

// What lies in a bundle beside the entries of its Info.plist.
struct BundleParts {
  platform::Value::Dictionary info = {};
  std::string executable = {};              // a name in Contents/MacOS; empty: there is none
  std::vector<std::string> resources = {};  // names in Contents/Resources
  platform::Value::Dictionary texts = {};   // of the strings table MoveApplication; empty: there is none
};

enum class Preferences { Forced, OfTheUser, OfAllUsers };

// One side of a contract: the services of the fake machine or those of this system, with a disk that belongs
// to the test alone.
class World {
 public:
  virtual ~World() = default;

  virtual platform::Platform& services() = 0;

  // An empty folder, by a path without links.
  virtual std::string folder() const = 0;

  // A path in that folder; one that is absolute already stays as it is.
  std::string operator/(std::string_view name) const {
    return name.starts_with('/') ? std::string(name) : folder() + "/" + std::string(name);
  }

  // Puts something there, with the folders above it, and answers its path.
  virtual std::string write(std::string_view name, std::string_view content) = 0;
  virtual std::string link(std::string_view name, const std::string& destination) = 0;
  virtual std::string pipe(std::string_view name) = 0;

  // From now on nobody may change the file's text or the folder's entries.
  virtual void makeReadOnly(std::string_view name) = 0;

  // A path of the machine, such as "/Volumes/Karno", as this system has it.
  std::string onMachine(std::string_view path) {
    const std::string applications = services().standardFolders.localApplications();
    return applications.substr(0, applications.rfind('/')) + std::string(path);
  }

  // Mounts a disk image at a path of the machine. The folder is there already.
  virtual void mountImage(const std::string& place, const std::string& device) = 0;

  // Makes the bundle of that name in the folder and answers its path.
  virtual std::string makeBundle(std::string_view name, const BundleParts& parts) = 0;

  // Another process stores the value under the key in that domain.
  virtual void store(Preferences where, const std::string& domain, const std::string& key,
                     const platform::Value& value) = 0;

  // The file that forces the domain's values becomes unreadable.
  virtual void damageForcedValues(const std::string& domain) = 0;

  // Lets time pass and the main thread's queues run until the condition holds. False when that takes longer.
  virtual bool waitUntil(const std::function<bool()>& condition, double limitSeconds = 60) = 0;
};

std::unique_ptr<World> makeFakeWorld();
std::unique_ptr<World> makeNativeWorld();

// What a service promises, whichever world it is in. A suite is instantiated as Fake and as Native.
class Contract : public testing::TestWithParam<std::unique_ptr<World> (*)()> {
 protected:
  const std::unique_ptr<World> world_ = GetParam()();
  World& here_ = *world_;
  platform::Platform& services_ = world_->services();
};

}  // namespace karno::test
