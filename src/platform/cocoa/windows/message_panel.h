#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cocoa/windows/window.h"

namespace karno::platform::cocoa {

inline constexpr std::string_view kApplicationName = "Karno";

// A window as an alert of a Mac looks: the application's icon at the left, a message in bold, an explanation
// below it, buttons at the lower right with the default button outermost. It takes the size that its texts
// need. Main thread only, after the application object was made.
class MessagePanel {
 public:
  struct ButtonSpec {
    std::string title;
    std::string keyEquivalent;
    std::function<void()> onClick;
  };

  // The first button is the outermost one and has the focus.
  MessagePanel(Window::Options options, std::vector<ButtonSpec> buttons);

  void setMessage(std::string_view text) { message_.setText(text); }
  void setExplanation(std::string_view text) { explanation_.setText(text); }

  // A picture at the lower right of the icon, from a file. Once at most.
  void setBadge(const std::string& path) { badge_ = window_.addPicture({}, path); }

  void setButtonTitle(std::size_t index, std::string_view title) { buttons_[index].setTitle(title); }

  // Puts everything in its place for the texts of now. An empty text takes no room.
  void layOut();

  Window& window() { return window_; }

 private:
  double textHeight(double width) const;

  Window window_;
  Icon icon_;
  std::optional<Icon> badge_;
  Label message_;
  Label explanation_;
  std::vector<Button> buttons_;
};

}  // namespace karno::platform::cocoa
