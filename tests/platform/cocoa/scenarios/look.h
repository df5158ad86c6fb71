#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cocoa/runtime/objc.h"

// What stands in this process's native windows, asked of the framework and not of the code under test. Main
// thread only.
namespace karno::test {

struct SeenView {
  std::string className;
  std::string text;  // a label's text or a button's title
  platform::objc::Rect frame;
  platform::objc::Object view;
};

struct SeenWindow {
  std::string title;
  platform::objc::Size contentSize;
  std::vector<SeenView> views;
};

// The windows on the screen, in the order in which they were made.
std::vector<SeenWindow> visibleWindows();

// How many windows this process has, shown or not.
std::size_t windowCount();

// The texts of the labels and buttons of the one visible window, in the order in which they were added, one a
// line.
std::string textsOnScreen();

// How many pictures the one visible window shows.
std::size_t picturesOnScreen();

// "0 to 100, at 42", of the one visible progress bar.
std::string barOnScreen();

// The titles of a menu bar's menus and, below each, its items: title, message, key.
std::string textsOfMenu(const platform::objc::Object& bar);

// How a text is drawn once the framework has looked over its fonts: "all letters, 1 weight", or how many are
// missing and in how many weights the rest stands.
std::string fontsOf(const std::string& text, bool isBold);

// What a person would complain about in the one visible window: text that is cut, a title that does not fit
// its button, a control that lies outside or on top of another, a button too small to hit. "nothing" if all
// is well.
std::string complaints();

// Presses the mouse on the button of that title once its window is the active one.
void clickWhenActive(std::string_view title);

// Says what colour the window has near its lower left corner, where nothing stands, once it is the active
// one, and ends the process. A window that was not painted is black there.
void sayColourAndEnd();

}  // namespace karno::test
