#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cocoa/windows/controls.h"

// Windows built in code. Main thread only, after the application object was made. Sizes are in points, texts
// are UTF-8.
namespace karno::platform::cocoa {

// A titled window, made hidden. Its end takes the native window off the screen without telling the will-close
// handler, and no callback of its buttons runs afterwards.
class Window {
 public:
  struct Options {
    bool resizable = false;
    bool miniaturizable = true;
  };

  Window(std::string_view title, double width, double height, Options options);
  Window(std::string_view title, double width, double height) : Window(title, width, height, Options()) {}
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  std::string title() const;
  void center();

  // The size of what is inside the frame and below the title. The upper left corner stays where it is.
  void setContentSize(double width, double height);

  // Makes it key and brings it to the front of the application's windows.
  void show();

  // Closes it, whether or not it was ever shown; the handler hears of it first. It can be shown again.
  void close();
  bool isVisible() const;

  // Called whenever the window is about to close, by close() or by the user; an empty one calls nothing.
  // To quit when it closes, let the handler call platform::host().application.terminate().
  void setWillClose(std::function<void()> handler);

  // What the user's wish to close it calls in place of closing it; with an empty one it closes.
  void setCloseRequest(std::function<void()> handler);

  // Shows it and lets the user do nothing else in this application until stopModal(), whose code it answers.
  // Other main-thread work goes on.
  long runModal();
  static void stopModal(long code);

  Label addLabel(const Frame& frame, std::string_view text, bool selectable = false,
                 TextStyle style = TextStyle::Plain);
  ScrollingText addScrollingText(const Frame& frame, std::string_view text);
  TextField addTextField(const Frame& frame, std::string_view text);
  ProgressBar addProgressBar(const Frame& frame);
  Icon addPicture(const Frame& frame, const std::string& path);
  Icon addApplicationIcon(const Frame& frame);

  // `keyEquivalent`: "\r" for Return, "\033" for Escape, empty for none. The callback may close the window
  // and destroy it. What it throws is caught and written to the console log.
  Button addButton(const Frame& frame, std::string_view title, std::string_view keyEquivalent,
                   std::function<void()> onClick);

  // The order in which the tabulator goes from control to control, round and round; the first has the focus
  // when the window is first shown. What is not among them is never reached.
  void setTabOrder(const std::vector<Button>& buttons);

 private:
  void redrawLater();

  struct State;
  std::shared_ptr<State> state_;  // what is late asks whether it is still there
};

}  // namespace karno::platform::cocoa
