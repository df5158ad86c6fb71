#pragma once
#include "platform/linux/files/folder_exchange.h"
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

inline constexpr const char* kUpdateFolderPrefix = ".karno-update-";

// Folders of mode 0700 in the folder that the bundle lies in, held by this process while it works in them.
// What it has neither removed nor handed over goes at its orderly end; of what a killed one left behind, a
// download at the next start and an unpacked bundle, which may be the only whole one, a day later.
class SiblingFolders final : public UpdateFolders {
 public:
  using Exchange = int (*)(const std::string& one, const std::string& other);

  explicit SiblingFolders(Exchange exchange = exchangeInOneStep) : exchange_(exchange) {}

  std::optional<Error> refusalOfPlace(const std::string& bundle) override;
  Result<std::string> makeFolderBeside(const std::string& bundle) override;
  void handOver(const std::string& folder) override;
  void remove(const std::string& folder) override;
  void removeLeftoversBeside(const std::string& bundle) override;

 private:
  const Exchange exchange_;
};

}  // namespace karno::platform::updates
