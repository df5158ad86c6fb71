#pragma once
#include "../platform/support/scoped_environment.h"
#include "../platform/support/temporary_folder.h"
#include "plain_user.h"
#include "world.h"

namespace karno::test {

// This system's services, in a home folder and a machine root of their own. No application object is made.
class NativeWorld : public World {
 public:
  NativeWorld();
  ~NativeWorld() override;

  platform::Platform& services() override;
  std::string folder() const override;
  std::string write(std::string_view name, std::string_view content) override;
  std::string link(std::string_view name, const std::string& destination) override;
  std::string pipe(std::string_view name) override;
  void makeReadOnly(std::string_view name) override;
  void mountImage(const std::string& place, const std::string& device) override;
  std::string makeBundle(std::string_view name, const BundleParts& parts) override;
  void store(Preferences where, const std::string& domain, const std::string& key,
             const platform::Value& value) override;
  void damageForcedValues(const std::string& domain) override;
  bool waitUntil(const std::function<bool()>& condition, double limitSeconds) override;

 private:
  void writeList(const std::string& path, const platform::Value::Dictionary& entries);

  const TemporaryFolder disk_;
  const ScopedEnvironment home_{"HOME", disk_ / "home"};
  const ScopedEnvironment root_{"KARNO_MACHINE_ROOT", disk_ / "machine"};
  const PlainUser user_;
};

}  // namespace karno::test
