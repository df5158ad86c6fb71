#include "fake_update_services.h"

#include <utility>

namespace karno::test {

using platform::Error;
using platform::Result;
using platform::Value;

namespace {

constexpr int kSteps = 10;

// Answers whether nobody stopped it.
bool work(FakePlatform& machine, const platform::updates::Progress& progress, std::uint64_t total = kSteps) {
  for (int step = 1; step <= kSteps; ++step) {
    machine.dispatch.sleep(1);
    if (!progress(static_cast<std::uint64_t>(step), total)) return false;
  }
  return true;
}

const Error kStopped("SUSparkleErrorDomain", 4007);

}  // namespace

std::optional<Error> FakeDownloads::download(const std::string& url, const std::string& path,
                                             std::uint64_t bytesMax,
                                             const platform::updates::Progress& progress) {
  requests.push_back({url, path, bytesMax, machine_.scheduler.currentThreadName()});
  if (!work(machine_, progress, total)) return kStopped;
  if (failure) return failure;
  machine_.files.addFile(path, "archive");
  return std::nullopt;
}

Result<std::string> FakeInstaller::unpack(const platform::updates::UnpackRequest& request,
                                          const platform::updates::Progress& progress) {
  requests.push_back(request);
  if (!work(machine_, progress)) return kStopped;
  if (failure) return *failure;
  if (whenDone) whenDone();
  return request.folder + "/Karno.app";
}

std::optional<Error> FakeInstaller::installAfterQuit(const platform::updates::InstallOrder& order) {
  if (installFailure) return installFailure;
  installations.push_back(order.newBundle + " for " + order.bundle + (order.relaunch ? " and relaunch" : ""));
  touchfiles.push_back(order.touchfile);
  return std::nullopt;
}

std::optional<Result<platform::InstallVerdict>> FakeInstaller::takeVerdict(const std::string&) {
  return std::exchange(verdict, std::nullopt);
}

Result<std::string> FakeUpdateFolders::makeFolderBeside(const std::string&) {
  if (failure) return *failure;
  const std::string folder = "/Applications/.karno-update-" + std::to_string(++made_);
  machine_.files.addDirectory(folder);
  return folder;
}

void FakeUpdateFolders::remove(const std::string& folder) {
  removed.push_back(folder);
  machine_.files.remove(folder);
}

std::optional<Value> FakeUpdateSettings::objectForKey(std::string_view key) const {
  const auto& own = machine_.userDefaults.standard().values;
  if (const auto found = own.find(key); found != own.end()) return found->second;
  return machine_.bundles.mainBundle().objectForInfoDictionaryKey(key);
}

void FakeUpdateSettings::setObject(Value value, std::string_view key) {
  machine_.userDefaults.standard().values.insert_or_assign(std::string(key), std::move(value));
}

void FakeUpdateSettings::removeObject(std::string_view key) {
  machine_.userDefaults.standard().values.erase(std::string(key));
}

class FakeOfferWindows::Window final : public platform::updates::OfferWindow {
 public:
  explicit Window(FakeOfferWindows& owner) : owner_(owner) { owner_.isUp = true; }
  ~Window() override { owner_.isUp = false; }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  void bringToFront() override { ++owner_.timesBroughtToFront; }

 private:
  FakeOfferWindows& owner_;
};

std::unique_ptr<platform::updates::OfferWindow> FakeOfferWindows::show(
    const platform::updates::OfferTexts& texts, std::function<void(long)> answer) {
  machine_.scheduler.requireMainThread("OfferWindows::show");
  if (cannotBeShown) return nullptr;
  shown.push_back(texts);
  answer_ = std::move(answer);
  return std::make_unique<Window>(*this);
}

}  // namespace karno::test
