#include "embedded_client/client_layout.h"

#include "ipc/wrapper_protocol.h"

namespace karno::client {
namespace {

constexpr double kMargin = 20;
constexpr double kGap = 8;
constexpr double kLine = 18;
constexpr double kFieldHeight = 24;
constexpr double kButtonWidth = 270;
constexpr double kButtonHeight = 28;
constexpr double kQuitWidth = 100;
constexpr double kReasonLabelWidth = 60;
constexpr double kIcon = 64;
constexpr std::size_t kColumns = 2;
constexpr std::size_t kRows = (kWrapperMessages.size() + kColumns - 1) / kColumns;

constexpr double kInnerWidth = kColumns * kButtonWidth + kGap;
// From the bottom: a row with status and Quit, the message buttons, the reason, the settings, and the icon with the
// headline and the origin beside it.
constexpr double kButtonsBottom = kMargin + kButtonHeight + 2 * kGap;
constexpr double kReasonBottom = kButtonsBottom + kRows * (kButtonHeight + kGap) + kGap;
constexpr double kSettingsBottom = kReasonBottom + kFieldHeight + 2 * kGap;
constexpr double kSettingsHeight = 5 * kLine;
constexpr double kIconBottom = kSettingsBottom + kSettingsHeight + 2 * kGap;
constexpr double kOriginBottom = kIconBottom + kIcon / 2 - kLine - kGap / 4;
constexpr double kHeadlineBottom = kOriginBottom + kLine + kGap / 2;
constexpr double kTextLeft = kMargin + kIcon + 2 * kGap;
constexpr double kTextWidth = kInnerWidth + kMargin - kTextLeft;

}  // namespace

ClientLayout clientLayout() {
  const double labelDrop = (kButtonHeight - kLine) / 2;
  return {
      .width = kInnerWidth + 2 * kMargin,
      .height = kIconBottom + kIcon + kMargin,
      .icon = {kMargin, kIconBottom, kIcon, kIcon},
      .headline = {kTextLeft, kHeadlineBottom, kTextWidth, kLine},
      .origin = {kTextLeft, kOriginBottom, kTextWidth, kLine},
      .settings = {kMargin, kSettingsBottom, kInnerWidth, kSettingsHeight},
      .reasonLabel = {kMargin, kReasonBottom + (kFieldHeight - kLine) / 2, kReasonLabelWidth, kLine},
      .reasonField = {kMargin + kReasonLabelWidth, kReasonBottom, kInnerWidth - kReasonLabelWidth,
                      kFieldHeight},
      .status = {kMargin, kMargin + labelDrop, kInnerWidth - kQuitWidth - kGap, kLine},
      .quitButton = {kMargin + kInnerWidth - kQuitWidth, kMargin, kQuitWidth, kButtonHeight},
  };
}

Rectangle ClientLayout::messageButton(std::size_t index) const {
  const auto column = static_cast<double>(index / kRows);
  const auto row = static_cast<double>(kRows - 1 - index % kRows);
  return {kMargin + column * (kButtonWidth + kGap), kButtonsBottom + row * (kButtonHeight + kGap),
          kButtonWidth, kButtonHeight};
}

}  // namespace karno::client
