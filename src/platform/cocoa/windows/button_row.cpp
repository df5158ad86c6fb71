#include "platform/cocoa/windows/button_row.h"

#include <algorithm>

namespace karno::platform::cocoa {
namespace {

constexpr double kButtonWidthMin = 82;
constexpr double kButtonGap = 10;

double widthOf(const Button& button) { return std::max(button.fittingWidth(), kButtonWidthMin); }

}  // namespace

double buttonRowWidth(const std::vector<Button>& buttons) {
  double width = 0;
  for (const Button& button : buttons) {
    width += (width > 0 ? kButtonGap : 0) + widthOf(button);
  }
  return width;
}

void layOutButtonRow(std::vector<Button>& buttons, double right, double bottom) {
  for (Button& button : buttons) {
    const double width = widthOf(button);
    button.setFrame({right - width, bottom, width, kButtonHeight});
    right -= width + kButtonGap;
  }
}

}  // namespace karno::platform::cocoa
