#include "fake_user_defaults.h"

#include <algorithm>
#include <cctype>

namespace karno::test {
namespace {

using platform::Value;

class FakeUserDefaults final : public platform::UserDefaults {
 public:
  FakeUserDefaults(FakeScheduler& scheduler, std::shared_ptr<FakeUserDefaultsStore::Suite> suite)
      : scheduler_(scheduler), suite_(std::move(suite)) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    scheduler_.countAction();
    const auto found = suite_->values.find(key);
    if (found == suite_->values.end()) return std::nullopt;
    return found->second;
  }

  bool boolForKey(std::string_view key) const override { return platform::plainBoolean(objectForKey(key)); }

  void setBool(bool value, std::string_view key) override {
    suite_->values.insert_or_assign(std::string(key), Value(value));
    suite_->writes.emplace_back(key, value);
    if (suite_->whenWritten) suite_->whenWritten();
  }

  void synchronize() override { ++suite_->synchronisations; }

 private:
  FakeScheduler& scheduler_;
  std::shared_ptr<FakeUserDefaultsStore::Suite> suite_;
};

}  // namespace

FakeUserDefaultsStore::FakeUserDefaultsStore(FakeScheduler& scheduler)
    : scheduler_(scheduler),
      standardUserDefaults_(std::make_unique<FakeUserDefaults>(scheduler, standard_)) {}

FakeUserDefaultsStore::~FakeUserDefaultsStore() = default;

std::unique_ptr<platform::UserDefaults> FakeUserDefaultsStore::makeSuite(const std::string& suiteName) {
  suitesMade_.push_back(suiteName);
  return std::make_unique<FakeUserDefaults>(scheduler_, fileOf(suiteName));
}

FakeUserDefaultsStore::Suite& FakeUserDefaultsStore::suite(const std::string& name) { return *fileOf(name); }

const std::shared_ptr<FakeUserDefaultsStore::Suite>& FakeUserDefaultsStore::fileOf(std::string name) {
  if (foldsCase) {
    std::ranges::transform(name, name.begin(), [](unsigned char letter) { return std::tolower(letter); });
  }
  std::shared_ptr<Suite>& suite = suites_[name];
  if (!suite) suite = std::make_shared<Suite>();
  return suite;
}

}  // namespace karno::test
