#include "embedded_client/client_window.h"

#include <fmt/format.h>

#include <cstddef>

#include "embedded_client/client_layout.h"
#include "ipc/wrapper_protocol.h"

namespace karno::client {
namespace {

platform::cocoa::Frame frame(const Rectangle& place) { return {place.x, place.y, place.width, place.height}; }

std::string headline(const Build& build) { return fmt::format("{}, the {}", build.name, build.description); }
std::string origin(std::int32_t parent) { return fmt::format("Started by process {}", parent); }

}  // namespace

ClientWindow::ClientWindow(const Build& build, std::int32_t parent, Actions actions)
    : actions_(std::move(actions)),
      window_(build.name, clientLayout().width, clientLayout().height),
      settings_(window_.addLabel(frame(clientLayout().settings), "")),
      status_(window_.addLabel(frame(clientLayout().status), "")),
      reason_(window_.addTextField(frame(clientLayout().reasonField), "")) {
  const ClientLayout layout = clientLayout();
  window_.addApplicationIcon(frame(layout.icon));
  window_.addLabel(frame(layout.headline), headline(build), false, platform::cocoa::TextStyle::Headline);
  window_.addLabel(frame(layout.origin), origin(parent));
  window_.addLabel(frame(layout.reasonLabel), "Reason:");
  reason_.setAccessibilityLabel("Reason");
  for (std::size_t i = 0; i < kWrapperMessages.size(); ++i) {
    const std::string_view message = kWrapperMessages[i];
    buttons_.push_back(window_.addButton(frame(layout.messageButton(i)), message, "",
                                         [this, message] { actions_.post(message, reason()); }));
  }
  window_.addButton(frame(layout.quitButton), "Quit", "", [this] { actions_.quit(); });
  window_.setWillClose([this] { actions_.quit(); });
}

std::optional<std::string> ClientWindow::reason() const {
  const std::string text = reason_.text();
  return text.empty() ? std::nullopt : std::optional(text);
}

void ClientWindow::show() {
  window_.center();
  window_.show();
}

void ClientWindow::setSettings(std::string_view text) { settings_.setText(text); }

void ClientWindow::setStatus(std::string_view text) { status_.setText(text); }

void ClientWindow::disableButtons() {
  for (auto& button : buttons_) button.setEnabled(false);
}

}  // namespace karno::client
