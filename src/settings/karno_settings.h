#pragma once
#include <memory>
#include <string_view>

#include "platform/never_destroyed.h"
#include "platform/user_defaults.h"

namespace karno {

// The user's own choices, in a suite of user defaults that the launcher shares with the embedded application.
// Nothing is cached: a value written by the embedded application is seen by the next read. Safe from any
// thread.
class KarnoSettings {
 public:
  static KarnoSettings& instance();

  static constexpr std::string_view suiteName() { return "it.vantul.karno"; }

  // Lets verbose and debug lines into the log.
  bool verboseLogging() const { return boolForKey("verboseLogging", false); }

  // True until something has marked the suite as used.
  bool isFirstStartup() const { return boolForKey("isFirstStartup", true); }

  // Whether the choice of build has been settled once.
  bool useFileProviderVerified() const;
  void setUseFileProviderVerified(bool verified);

  // The File Provider build (true) or the FUSE build. An administrator's value wins; the setter writes the
  // user's own value all the same.
  bool useFileProvider() const;
  void setUseFileProvider(bool use);

  // A number or a string gives its truth; anything else, and nothing, gives the default.
  bool boolForKey(std::string_view key, bool defaultValue) const;

  platform::UserDefaults& userDefaults() const { return *userDefaults_; }

 private:
  friend class platform::NeverDestroyed<KarnoSettings>;
  KarnoSettings();

  const std::unique_ptr<platform::UserDefaults> userDefaults_;
};

}  // namespace karno
