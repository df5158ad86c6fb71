#pragma once
#include <memory>
#include <string>

#include "hands.h"
#include "machine.h"
#include "web_server.h"

namespace karno::test {

// A machine with version 1 of the launcher, whose feed is on a web server of its own that the machine trusts.
class UpdateMachine {
 public:
  explicit UpdateMachine(const std::vector<std::string>& options = {});

  // Puts that version into the feed.
  void offer(const std::string& version, const std::string& flaw = "none");

  // Puts that bundle in the place of the launcher's, with the feed of the deployment.
  void install(const std::filesystem::path& bundle);

  // What the web server has.
  std::filesystem::path pages() const { return serverFolder_ / "www"; }

  void start(const std::vector<std::string>& options = {});

  // The window that offers the update; the launcher is asked to check for one.
  std::optional<WindowOnScreen> askForOffer();

  // Presses a key in it, then waits until it has gone.
  void answer(const WindowOnScreen& offer, const std::string& key);

  // The version of the bundle that is in its place now, and whether all its programs are there.
  std::string installedVersion() const;
  bool isBundleWhole() const;

  // What is left beside the bundle of updates that were under way.
  std::vector<std::string> remains() const;

  // The log's lines that the update manager wrote, and the reasons to end.
  std::vector<std::string> updateLines() const;

  // What the log says of this feed's address.
  std::string feed() const { return server_->https("/appcast.xml"); }
  std::string download() const { return server_->https("/Karno.tar"); }
  std::uintmax_t downloadBytes() const { return std::filesystem::file_size(serverFolder_ / "www/Karno.tar"); }
  std::filesystem::path touchFile() const {
    return machine_.home() / "Library/Caches/Karno/cache.noindex/.karnoUpdated";
  }
  std::filesystem::path applications() const { return machine_.bundle().parent_path(); }
  WebServer& server() const { return *server_; }
  Machine& operator*() { return machine_; }
  Machine* operator->() { return &machine_; }
  const Machine* operator->() const { return &machine_; }

 private:
  Machine machine_;
  std::filesystem::path serverFolder_;
  std::unique_ptr<WebServer> server_;
};

}  // namespace karno::test
