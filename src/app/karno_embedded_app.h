#pragma once
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/bundles.h"
#include "platform/never_destroyed.h"

namespace karno {

// Which build of the embedded application. 0 means File Provider; any other value means FUSE.
enum class KarnoAppType : std::int32_t { FileProvider = 0, Fuse = 1 };

// The build that this run of the launcher starts, decided once per process: by "-launch" and a bundle name on
// the command line, else by the administrator's value, the verified user setting or the first-start flag.
class KarnoEmbeddedApp {
 public:
  // The first call makes the whole decision, with its log lines and its writes to the user settings.
  static KarnoEmbeddedApp& manager();

  static constexpr std::string_view nameForFileProviderApp() { return "Karno.app"; }
  static constexpr std::string_view nameForFuseApp() { return "Karno(Fuse).app"; }

  KarnoAppType appType() const { return appType_; }
  void setAppType(KarnoAppType type) { appType_ = type; }
  bool useFileProvider() const { return appType_ == KarnoAppType::FileProvider; }

  // The chosen build's bundle name; once read it never changes. Any thread.
  std::string name();
  void setName(std::string name);

  // The chosen build's bundle in Contents/Helpers, or null. Once found it never changes; a bundle that was
  // not found is looked for again by the next call. Any thread: a launch and restarts may ask at once.
  std::shared_ptr<const platform::Bundle> bundle();
  void setBundle(std::shared_ptr<const platform::Bundle> bundle);

  // A list kept for whoever asks; the launcher itself neither fills nor reads it.
  const std::vector<std::string>& arguments() const { return arguments_; }
  void setArguments(std::vector<std::string> arguments) { arguments_ = std::move(arguments); }

  KarnoAppType appTypeForCommandLineArguments();

  // Settles and records the user's File Provider setting when the command line did not decide.
  void configureAppTypeForSystem();

 private:
  friend class platform::NeverDestroyed<KarnoEmbeddedApp>;
  KarnoEmbeddedApp() { setAppType(appTypeForCommandLineArguments()); }

  KarnoAppType appType_ = KarnoAppType::FileProvider;
  std::mutex lookupLock_;  // guards name_ and bundle_
  std::optional<std::string> name_;
  std::shared_ptr<const platform::Bundle> bundle_;
  std::vector<std::string> arguments_;
};

}  // namespace karno
