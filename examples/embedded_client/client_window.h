#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded_client/build.h"
#include "platform/cocoa/windows/window.h"

namespace karno::client {

// The client's one window: who it is, the settings it shares with the launcher, and a button for each
// message. Main thread only.
class ClientWindow {
 public:
  struct Actions {
    std::function<void(std::string_view message, std::optional<std::string> reason)> post;
    std::function<void()> quit;  // the Quit button, and closing the window
  };

  ClientWindow(const Build& build, std::int32_t parent, Actions actions);

  void show();
  void setSettings(std::string_view text);
  void setStatus(std::string_view text);

  // Nothing can be posted any more.
  void disableButtons();

 private:
  std::optional<std::string> reason() const;

  Actions actions_;
  platform::cocoa::Window window_;
  platform::cocoa::Label settings_;
  platform::cocoa::Label status_;
  platform::cocoa::TextField reason_;
  std::vector<platform::cocoa::Button> buttons_;
};

}  // namespace karno::client
