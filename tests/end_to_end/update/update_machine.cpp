#include "update_machine.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "places.h"
#include "subprocess.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOfferTitle = "Software Update";
constexpr int kOfferWidthMin = 500;  // the window that shows how far the check is has the same title
constexpr std::chrono::seconds kMachineLimit{60};

std::string makeRelease(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {"python3", "-B", makeReleaseProgram()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const CommandResult result = runCommand(words, kMachineLimit);
  if (result.status != 0) throw std::runtime_error("make_release.py: " + result.output);
  return result.output;
}

}  // namespace

UpdateMachine::UpdateMachine(const std::vector<std::string>& options)
    : machine_(builtTools(), options), serverFolder_(machine_.root().parent_path() / "server") {
  fs::create_directories(serverFolder_);
  server_ = std::make_unique<WebServer>(webServerProgram(), serverFolder_);
  fs::create_directories(machine_.root() / "etc/ssl");
  fs::copy_file(server_->authority(), machine_.root() / "etc/ssl/cert.pem");
  makeRelease({"trust", machine_.bundle(), makeRelease({"keys", serverFolder_})});
  machine_.useFeed(feed());
  fs::create_directories(touchFile().parent_path());
}

void UpdateMachine::offer(const std::string& version, const std::string& flaw) {
  makeRelease({"release", machine_.bundle(), version, serverFolder_ / "www", server_->https(""), flaw});
}

void UpdateMachine::install(const fs::path& bundle) {
  fs::remove_all(machine_.bundle());
  fs::copy(bundle, machine_.bundle(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  fs::remove(machine_.home() / "KARNOUPGRADE.debug");
}

void UpdateMachine::start(const std::vector<std::string>& options) {
  machine_.start(options);
  if (!machine_.waitForMessage("INFO Sparkle[START] Starting Up"))
    throw std::runtime_error("the launcher does not start: " + machine_.consoleText());
  waitForClientWindow(machine_);
}

std::optional<WindowOnScreen> UpdateMachine::askForOffer() {
  machine_.in({"karnoctl", "post", "check-for-updates"});
  std::optional<WindowOnScreen> window;
  machine_.waitUntil(
      [&] {
        window = findWindow(machine_, kOfferTitle, std::chrono::seconds(0));
        return window && window->width >= kOfferWidthMin;
      },
      kMachineLimit);
  return window && window->width >= kOfferWidthMin ? window : std::nullopt;
}

void UpdateMachine::answer(const WindowOnScreen& offer, const std::string& key) {
  const auto isGone = [&] {
    const auto now = findWindow(machine_, kOfferTitle, std::chrono::seconds(0));
    return !now || now->identifier != offer.identifier;
  };
  pressKey(machine_, offer, key);
  machine_.waitUntil(isGone, kMachineLimit);
}

std::string UpdateMachine::installedVersion() const {
  std::ostringstream text;
  text << std::ifstream(machine_.bundle() / "Contents/Info.plist").rdbuf();
  const std::string key = "<key>CFBundleVersion</key>";
  const std::size_t place = text.str().find("<string>", text.str().find(key));
  const std::size_t end = text.str().find("</string>", place);
  return place == std::string::npos ? "" : text.str().substr(place + 8, end - place - 8);
}

bool UpdateMachine::isBundleWhole() const {
  const fs::path contents = machine_.bundle() / "Contents";
  return fs::exists(contents / "MacOS/Karno") && fs::exists(contents / "Helpers/karno-installer") &&
         fs::exists(contents / "Helpers/Karno.app/Contents/MacOS/Karno") &&
         fs::exists(contents / "Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)") &&
         fs::exists(contents / "Resources/Base.lproj/Strings.json");
}

std::vector<std::string> UpdateMachine::remains() const {
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator(applications())) {
    if (entry.path() != machine_.bundle()) found.push_back(entry.path().filename());
  }
  return found;
}

std::vector<std::string> UpdateMachine::updateLines() const {
  std::vector<std::string> found;
  for (const std::string& message : machine_.log()) {
    if (message.find(" Sparkle[") != std::string::npos ||
        message.find(" AppDelegate[TERM") != std::string::npos)
      found.push_back(message);
  }
  return found;
}

}  // namespace karno::test
