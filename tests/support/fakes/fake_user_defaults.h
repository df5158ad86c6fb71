#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fake_scheduler.h"
#include "platform/user_defaults.h"

namespace karno::test {

// User defaults in memory. All objects made for one suite share its values, as do those of other processes.
class FakeUserDefaultsStore final : public platform::UserDefaultsStore {
 public:
  struct Suite {
    platform::Value::Dictionary values;
    std::vector<std::pair<std::string, platform::Value>> writes;  // by the launcher, in order
    int synchronisations = 0;
    std::function<void()> whenWritten;  // runs after every write of the launcher
  };

  explicit FakeUserDefaultsStore(FakeScheduler& scheduler);
  ~FakeUserDefaultsStore() override;

  platform::UserDefaults& standardUserDefaults() override { return *standardUserDefaults_; }
  std::unique_ptr<platform::UserDefaults> makeSuite(const std::string& suiteName) override;

  // Whether the disk takes names that differ only in case for one, as a Mac's usually does. Set it before
  // anything else.
  bool foldsCase = false;

  Suite& standard() { return *standard_; }
  Suite& suite(const std::string& name);

  // Names given to makeSuite(), in order.
  const std::vector<std::string>& suitesMade() const { return suitesMade_; }

 private:
  const std::shared_ptr<Suite>& fileOf(std::string name);

  FakeScheduler& scheduler_;
  std::map<std::string, std::shared_ptr<Suite>> suites_;
  std::shared_ptr<Suite> standard_ = std::make_shared<Suite>();
  std::unique_ptr<platform::UserDefaults> standardUserDefaults_;
  std::vector<std::string> suitesMade_;
};

}  // namespace karno::test
