#include "platform/cocoa/windows/message_panel.h"

#include <algorithm>
#include <array>

#include "platform/cocoa/windows/button_row.h"

namespace karno::platform::cocoa {
namespace {

constexpr double kPanelMargin = 20;
constexpr double kIconSize = 64;
constexpr double kBadgeSize = 30;
constexpr double kIconGap = 18;
constexpr double kTextGap = 8;
constexpr double kPanelButtonsGap = 18;
constexpr double kTextLeft = kPanelMargin + kIconSize + kIconGap;

// A text that would be higher than this at one width gets the next one.
constexpr double kComfortableTextHeight = 220;
constexpr std::array<double, 3> kTextWidths = {340, 460, 640};

// No taller than this, so that the buttons stay on the smallest screen; what of a text is below is cut.
constexpr double kTextHeightMax = 520;

double heightOf(const Label& label, double width) {
  return label.text().empty() ? 0 : label.heightForWidth(width);
}

}  // namespace

MessagePanel::MessagePanel(Window::Options options, std::vector<ButtonSpec> buttons)
    : window_(kApplicationName, kTextLeft + kTextWidths.front() + kPanelMargin, 2 * kPanelMargin + kIconSize,
              options),
      icon_(window_.addApplicationIcon({})),
      message_(window_.addLabel({}, "", true, TextStyle::Headline)),
      explanation_(window_.addLabel({}, "", true, TextStyle::Small)) {
  for (ButtonSpec& button : buttons) {
    buttons_.push_back(window_.addButton({}, button.title, button.keyEquivalent, std::move(button.onClick)));
  }
  icon_.setAccessibilityLabel(kApplicationName);
  window_.setTabOrder(buttons_);
}

double MessagePanel::textHeight(double width) const {
  const double message = heightOf(message_, width);
  const double explanation = heightOf(explanation_, width);
  const double gap = message > 0 && explanation > 0 ? kTextGap : 0;
  return message + gap + explanation;
}

void MessagePanel::layOut() {
  const double rowWidth = buttonRowWidth(buttons_);
  double textWidth = 0;
  for (const double width : kTextWidths) {
    textWidth = std::max(width, rowWidth - kIconSize - kIconGap);
    if (textHeight(textWidth) <= kComfortableTextHeight) break;
  }

  const double bodyHeight = std::max(kIconSize, std::min(textHeight(textWidth), kTextHeightMax));
  const double bodyBottom = kPanelMargin + kButtonHeight + kPanelButtonsGap;
  const double width = kTextLeft + textWidth + kPanelMargin;
  const double height = bodyBottom + bodyHeight + kPanelMargin;
  window_.setContentSize(width, height);

  const double top = height - kPanelMargin;
  const double messageHeight = heightOf(message_, textWidth);
  const double explanationHeight = heightOf(explanation_, textWidth);
  icon_.setFrame({kPanelMargin, top - kIconSize, kIconSize, kIconSize});
  if (badge_) {
    badge_->setFrame({kPanelMargin + kIconSize - kBadgeSize, top - kIconSize, kBadgeSize, kBadgeSize});
  }
  message_.setFrame({kTextLeft, top - messageHeight, textWidth, messageHeight});
  const double explanationTop = messageHeight > 0 ? top - messageHeight - kTextGap : top;
  explanation_.setFrame({kTextLeft, std::max(explanationTop - explanationHeight, bodyBottom), textWidth,
                         std::min(explanationHeight, explanationTop - bodyBottom)});
  layOutButtonRow(buttons_, width - kPanelMargin, kPanelMargin);
}

}  // namespace karno::platform::cocoa
