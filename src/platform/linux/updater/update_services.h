#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/error.h"
#include "platform/linux/bundles/preferred_languages.h"
#include "platform/linux/files/install_verdict.h"
#include "platform/linux/updater/feed/appcast.h"
#include "platform/value.h"

// What the updater needs of the machine beside the launcher's own services.
namespace karno::platform::updates {

// How far something is, in bytes; a total of 0 is not known. Answers whether to go on. Called on the thread
// that does the work.
using Progress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// Fetches files of any size. Safe from any thread; blocks.
class FileDownloads {
 public:
  virtual ~FileDownloads() = default;

  // Writes what is behind the URL to a new file of mode 0600. More than `bytesMax` bytes, a redirect that
  // leaves https, and an answer that is no success are errors. Absent error: all is there. After the progress
  // has answered false the error is Cancelled.
  virtual std::optional<Error> download(const std::string& url, const std::string& path,
                                        std::uint64_t bytesMax, const Progress& progress) = 0;
};

struct UnpackRequest {
  std::string archive;
  std::optional<std::uint64_t> length;  // that the feed tells
  std::string signature;                // base64
  std::string publicKey;                // base64
  std::string bundle;                   // that is to be replaced
  std::string folder;                   // where to unpack; exists and is empty
};

struct InstallOrder {
  std::string newBundle;
  std::string bundle;     // that is to be replaced
  std::string touchfile;  // goes when the installation fails; empty: none
  bool relaunch = false;
};

// Verifies, unpacks and puts in place, in a process of its own. Safe from any thread.
class UpdateInstaller {
 public:
  virtual ~UpdateInstaller() = default;

  // Blocks. The path of the new bundle inside the folder. Nothing is unpacked before the signature has been
  // found good. After the progress has answered false the error is Cancelled.
  virtual Result<std::string> unpack(const UnpackRequest& request, const Progress& progress) = 0;

  // Begins to wait for this process to end; then the new bundle takes the place of the old one in one step.
  // Returns at once.
  virtual std::optional<Error> installAfterQuit(const InstallOrder& order) = 0;

  // What an installation that failed after its launcher's end has left to be told; see takeInstallVerdict().
  virtual std::optional<Result<InstallVerdict>> takeVerdict(const std::string& bundle) = 0;
};

// Private folders on the bundle's own volume, so that the swap is a rename. Safe from any thread.
class UpdateFolders {
 public:
  virtual ~UpdateFolders() = default;

  // Why no update can be put in place there; absent when one can.
  virtual std::optional<Error> refusalOfPlace(const std::string& bundle) = 0;

  // A folder goes with this process at the latest, unless it is handed over.
  virtual Result<std::string> makeFolderBeside(const std::string& bundle) = 0;
  virtual void handOver(const std::string& folder) = 0;
  virtual void remove(const std::string& folder) = 0;

  // Removes what updates left beside the bundle that were cut off.
  virtual void removeLeftoversBeside(const std::string& bundle) = 0;
};

// The updater's own settings, kept over launches; the launcher's user defaults first, then what its bundle
// comes with. Safe from any thread.
class UpdateSettings {
 public:
  virtual ~UpdateSettings() = default;
  virtual std::optional<Value> objectForKey(std::string_view key) const = 0;
  virtual void setObject(Value value, std::string_view key) = 0;
  virtual void removeObject(std::string_view key) = 0;  // from the user defaults
};

struct OfferTexts {
  std::string title;
  std::string message;
  std::string explanation;
  std::string notes;                 // may be long; empty: none
  std::string install, later, skip;  // titles of the buttons; an empty one is left out
};

// The window that offers an update. Main thread only. Its end takes it off the screen without an answer.
class OfferWindow {
 public:
  virtual ~OfferWindow() = default;
  virtual void bringToFront() = 0;
};

class OfferWindows {
 public:
  virtual ~OfferWindows() = default;

  // Shows it. The answer comes once, on the main thread: a kUserUpdateChoice; closing the window is to
  // dismiss. It may end the window. Null when it could not be shown; then no answer comes.
  virtual std::unique_ptr<OfferWindow> show(const OfferTexts& texts,
                                            std::function<void(long choice)> answer) = 0;
};

// What is behind an https address. Blocks; ends with an error soon after it is wanted no more. Any thread.
using FetchFeed =
    std::function<Result<std::string>(const std::string& url, const std::function<bool()>& isWanted)>;

// Makes items of what a feed's server has sent; see parseAppcast(). Safe from any thread.
using ReadFeed = std::function<Result<std::vector<FeedItem>>(std::string_view bytes)>;

struct UpdateServices {
  FileDownloads& downloads;
  UpdateInstaller& installer;
  UpdateFolders& folders;
  UpdateSettings& settings;
  OfferWindows& offerWindows;
  FetchFeed fetchFeed;
  ReadFeed readFeed = parseAppcast;
  std::function<std::vector<std::string>()> languages = preferredLanguages;  // the user's, most wanted first
};

}  // namespace karno::platform::updates
