#pragma once
#include <vector>

#include "platform/cocoa/windows/controls.h"

// Buttons side by side at the lower right of a window, the first one outermost, each as wide as its title
// needs and none too narrow to hit. In points.
namespace karno::platform::cocoa {

inline constexpr double kButtonHeight = 28;

double buttonRowWidth(const std::vector<Button>& buttons);
void layOutButtonRow(std::vector<Button>& buttons, double right, double bottom);

}  // namespace karno::platform::cocoa
