#pragma once
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/never_destroyed.h"
#include "platform/value.h"

namespace karno {

class FuseManager;

// Told on the thread that asked for the check.
class FuseManagerDelegate {
 public:
  virtual ~FuseManagerDelegate() = default;
  virtual void fuseMeetsRequirements(FuseManager& manager) = 0;

  // `isUpgrade`: some version of macFUSE is installed already.
  virtual void fuseNeedsToBeInstalled(FuseManager& manager, bool isUpgrade) = 0;
};

// Knows which macFUSE is installed, whether it is good enough for this Mac and whether there is a newer one.
// Remembers nothing between checks, so a macFUSE that has just been installed is seen at once. Safe from any
// thread.
class FuseManager {
 public:
  static FuseManager& instance();

  // Held weakly.
  std::shared_ptr<FuseManagerDelegate> delegate();
  void setDelegate(std::weak_ptr<FuseManagerDelegate> delegate);

  // Checks on the calling thread and tells the delegate before it returns.
  void checkSystemMeetsRequirements();

  // Whether a macFUSE is installed that is good enough for this Mac. Quiet leaves out the lines of the log
  // that are no errors, but for the one of the requirements table.
  bool checkFuseIsInstalledInSystem(bool quiet);

  // Where the information file of a framework in the machine's Library lies, or would lie. Absent when the
  // machine has no Library.
  static std::optional<std::string> pathOfPlistForFrameworkNamed(const std::string& name);

  // What that file holds; absent when it is missing or none.
  std::optional<platform::Value::Dictionary> plistForFrameworkNamed(const std::string& name) const;

  static constexpr const char* kFuseFramework = "macFUSE.framework";

  // Read afresh at every call.
  std::optional<platform::Value::Dictionary> fuseFrameworkPList() const;

  // The framework's CFBundleVersion. Absent when macFUSE is not installed; may be empty.
  std::optional<std::string> installedFuseVersion() const;

  // Offers the user to update macFUSE when a newer release has been published. The completion, which may be
  // empty, is called once at the end: on the main thread, or on the calling thread when the File Provider
  // build is in use and nothing is checked.
  void promptUserIfUpdateIsAvailableCompletion(std::function<void()> completion);

  // These two wait for the network.
  bool isUpdateAvailable();
  std::optional<std::string> retrieveLatestVersionAvailable();

  // The first dotted version in the text.
  static std::optional<std::string> extractVersionFromString(const std::string& text);

 private:
  friend class platform::NeverDestroyed<FuseManager>;
  FuseManager() = default;

  std::mutex lock_;  // guards delegate_
  std::weak_ptr<FuseManagerDelegate> delegate_;
};

}  // namespace karno
