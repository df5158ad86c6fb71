#pragma once
#include <mutex>

#include "platform/bundles.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/posix/processes/process_information.h"

namespace karno::platform {

// A bundle as NSBundle sees it. What is nil, or what NSBundle raises, which is written to the console log,
// counts as absent.
class FoundationBundle final : public Bundle {
 public:
  // `bundle` is an NSBundle.
  explicit FoundationBundle(objc::Object bundle) : bundle_(std::move(bundle)) {}

  std::string bundlePath() const override;
  std::optional<std::string> executablePath() const override;
  std::optional<std::string> executableURL() const override;
  std::optional<std::string> bundleIdentifier() const override;
  std::optional<Value> objectForInfoDictionaryKey(std::string_view key) const override;
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override;
  std::string localisedString(std::string_view key, std::string_view table) const override;

 private:
  std::optional<std::string> stringOf(objc::Selector property) const;

  const objc::Object bundle_;
};

class FoundationBundles final : public Bundles {
 public:
  // `programPath` is the file that runs. NSBundle goes by the path that the program was started by: behind a
  // link to it, the folder of the link is the main bundle. The bundle that the file lies in counts then.
  explicit FoundationBundles(std::string programPath = platform::programPath())
      : programPath_(std::move(programPath)) {}

  const Bundle& mainBundle() const override;
  std::shared_ptr<const Bundle> bundleAtPath(const std::string& path) const override;

 private:
  const std::string programPath_;
  mutable std::once_flag mainMade_;
  mutable std::shared_ptr<const Bundle> main_;
};

}  // namespace karno::platform
