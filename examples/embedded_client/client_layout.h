#pragma once
#include <cstddef>

namespace karno::client {

// Where everything in the client's window lies, in points; y counts upwards from the window's lower edge.
struct Rectangle {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

struct ClientLayout {
  double width = 0;
  double height = 0;
  Rectangle icon;
  Rectangle headline;
  Rectangle origin;  // who started it
  Rectangle settings;
  Rectangle reasonLabel;
  Rectangle reasonField;
  Rectangle status;
  Rectangle quitButton;

  // The button of the message at `index` of kWrapperMessages: down the first column, then down the second.
  Rectangle messageButton(std::size_t index) const;
};

// Always the same.
ClientLayout clientLayout();

}  // namespace karno::client
