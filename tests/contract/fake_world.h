#pragma once
#include "fake_platform.h"
#include "world.h"

namespace karno::test {

class FakeWorld : public World {
 public:
  platform::Platform& services() override { return services_; }
  std::string folder() const override { return "/Users/tester/work"; }
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

  FakePlatform machine;

 private:
  platform::Platform& services_ = platform::host();
};

}  // namespace karno::test
