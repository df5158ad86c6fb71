#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fake_platform.h"
#include "platform/linux/updater/update_services.h"

namespace karno::test {

// Downloads that a test describes. They take ten virtual seconds, in ten steps.
class FakeDownloads final : public platform::updates::FileDownloads {
 public:
  explicit FakeDownloads(FakePlatform& machine) : machine_(machine) {}

  std::optional<platform::Error> download(const std::string& url, const std::string& path,
                                          std::uint64_t bytesMax,
                                          const platform::updates::Progress& progress) override;

  struct Request {
    std::string url;
    std::string path;
    std::uint64_t bytesMax = 0;
    std::string thread;
  };
  std::vector<Request> requests;
  std::optional<platform::Error> failure;
  std::uint64_t total = 10;  // that the progress tells; 0 when the server does not

 private:
  FakePlatform& machine_;
};

class FakeInstaller final : public platform::updates::UpdateInstaller {
 public:
  explicit FakeInstaller(FakePlatform& machine) : machine_(machine) {}

  platform::Result<std::string> unpack(const platform::updates::UnpackRequest& request,
                                       const platform::updates::Progress& progress) override;
  std::optional<platform::Error> installAfterQuit(const platform::updates::InstallOrder& order) override;
  std::optional<platform::Result<platform::InstallVerdict>> takeVerdict(const std::string& bundle) override;

  std::vector<platform::updates::UnpackRequest> requests;
  std::optional<platform::Error> failure;
  std::optional<platform::Error> installFailure;
  std::vector<std::string> installations;                             // "NEW for OLD", with " and relaunch"
  std::vector<std::string> touchfiles;                                // that each of them was told
  std::optional<platform::Result<platform::InstallVerdict>> verdict;  // taken once
  std::function<void()> whenDone;  // runs when all is unpacked, before anybody is told

 private:
  FakePlatform& machine_;
};

class FakeUpdateFolders final : public platform::updates::UpdateFolders {
 public:
  explicit FakeUpdateFolders(FakePlatform& machine) : machine_(machine) {}

  std::optional<platform::Error> refusalOfPlace(const std::string&) override { return refusal; }
  platform::Result<std::string> makeFolderBeside(const std::string& bundle) override;
  void handOver(const std::string& folder) override { handedOver.push_back(folder); }
  void remove(const std::string& folder) override;
  void removeLeftoversBeside(const std::string& bundle) override { cleanedBeside.push_back(bundle); }

  std::vector<std::string> cleanedBeside;
  std::optional<platform::Error> refusal;
  std::optional<platform::Error> failure;
  std::vector<std::string> handedOver;
  std::vector<std::string> removed;

 private:
  int made_ = 0;
  FakePlatform& machine_;
};

// The standard user defaults before the bundle's Info.plist.
class FakeUpdateSettings final : public platform::updates::UpdateSettings {
 public:
  explicit FakeUpdateSettings(FakePlatform& machine) : machine_(machine) {}

  std::optional<platform::Value> objectForKey(std::string_view key) const override;
  void setObject(platform::Value value, std::string_view key) override;
  void removeObject(std::string_view key) override;

 private:
  FakePlatform& machine_;
};

class FakeOfferWindows final : public platform::updates::OfferWindows {
 public:
  explicit FakeOfferWindows(FakePlatform& machine) : machine_(machine) {}

  std::unique_ptr<platform::updates::OfferWindow> show(const platform::updates::OfferTexts& texts,
                                                       std::function<void(long)> answer) override;

  // What a user's press does. Main thread only.
  void answer(long choice) {
    const auto copy = answer_;
    copy(choice);
  }

  std::vector<platform::updates::OfferTexts> shown;
  bool isUp = false;
  bool cannotBeShown = false;
  int timesBroughtToFront = 0;

 private:
  class Window;

  FakePlatform& machine_;
  std::function<void(long)> answer_;
};

}  // namespace karno::test
