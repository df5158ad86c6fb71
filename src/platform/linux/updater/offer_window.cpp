#include "platform/linux/updater/offer_window.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/windows/button_row.h"
#include "platform/cocoa/windows/window.h"
#include "platform/updater.h"

namespace karno::platform::updates {
namespace {

using cocoa::Button;
using cocoa::Label;
using cocoa::TextStyle;
using cocoa::Window;

constexpr double kMargin = 20;
constexpr double kIconSize = 64;
constexpr double kIconGap = 18;
constexpr double kTextGap = 8;
constexpr double kNotesGap = 14;
constexpr double kButtonsGap = 18;
constexpr double kSkipGap = 24;
constexpr double kTextLeft = kMargin + kIconSize + kIconGap;
constexpr double kTextWidth = 460;
constexpr double kNotesHeightMax = 190;

class CocoaOfferWindow final : public OfferWindow {
 public:
  CocoaOfferWindow(const OfferTexts& texts, std::function<void(long)> answer)
      : answer_(std::move(answer)),
        window_(texts.title, kTextLeft + kTextWidth + kMargin, kNotesHeightMax, {.miniaturizable = false}),
        icon_(window_.addApplicationIcon({})),
        message_(window_.addLabel({}, texts.message, true, TextStyle::Headline)),
        explanation_(window_.addLabel({}, texts.explanation, true, TextStyle::Small)) {
    addButton(main_, texts.install, "\r", kUserUpdateChoiceInstall);
    addButton(main_, texts.later, "\033", kUserUpdateChoiceDismiss);
    addButton(skip_, texts.skip, "", kUserUpdateChoiceSkip);
    std::vector<Button> all = main_;
    all.insert(all.end(), skip_.begin(), skip_.end());
    window_.setTabOrder(all);
    window_.setCloseRequest([this] { give(kUserUpdateChoiceDismiss); });
    layOut(texts.notes);
    window_.center();
    window_.show();
  }

  void bringToFront() override { window_.show(); }

 private:
  void addButton(std::vector<Button>& row, const std::string& title, std::string_view key, long choice) {
    if (!title.empty()) row.push_back(window_.addButton({}, title, key, [this, choice] { give(choice); }));
  }

  // Whoever hears the answer may end this window.
  void give(long choice) {
    const auto answer = std::exchange(answer_, {});
    if (answer) answer(choice);
  }

  void layOut(const std::string& notes) {
    const double rowWidth =
        cocoa::buttonRowWidth(main_) + (skip_.empty() ? 0 : kSkipGap + cocoa::buttonRowWidth(skip_));
    const double textWidth = std::max(kTextWidth, rowWidth - kIconSize - kIconGap);
    const double messageHeight = message_.heightForWidth(textWidth);
    const double explanationHeight = explanation_.heightForWidth(textWidth);
    std::optional<cocoa::ScrollingText> box;
    double boxHeight = 0;
    if (!notes.empty()) {
      box = window_.addScrollingText({0, 0, textWidth, kNotesHeightMax}, notes);
      boxHeight = box->heightOfWholeLines(kNotesHeightMax);
    }
    const double notesHeight = box ? kNotesGap + boxHeight : 0;
    const double body = std::max(kIconSize, messageHeight + kTextGap + explanationHeight + notesHeight);
    const double width = kTextLeft + textWidth + kMargin;
    const double height = kMargin + cocoa::kButtonHeight + kButtonsGap + body + kMargin;
    window_.setContentSize(width, height);

    double top = height - kMargin;
    icon_.setFrame({kMargin, top - kIconSize, kIconSize, kIconSize});
    message_.setFrame({kTextLeft, top - messageHeight, textWidth, messageHeight});
    top -= messageHeight + kTextGap;
    explanation_.setFrame({kTextLeft, top - explanationHeight, textWidth, explanationHeight});
    top -= explanationHeight + kNotesGap;
    if (box) box->setFrame({kTextLeft, top - boxHeight, textWidth, boxHeight});
    cocoa::layOutButtonRow(main_, width - kMargin, kMargin);
    cocoa::layOutButtonRow(skip_, kMargin + cocoa::buttonRowWidth(skip_), kMargin);
  }

  std::function<void(long)> answer_;
  Window window_;
  cocoa::Icon icon_;
  Label message_;
  Label explanation_;
  std::vector<Button> main_;  // the outermost first
  std::vector<Button> skip_;  // at the other end of the window
};

}  // namespace

std::unique_ptr<OfferWindow> CocoaOfferWindows::show(const OfferTexts& texts,
                                                     std::function<void(long choice)> answer) {
  const objc::AutoreleasePool pool;
  std::unique_ptr<OfferWindow> window;
  objc::guardedAndLogged("offer an update",
                         [&] { window = std::make_unique<CocoaOfferWindow>(texts, std::move(answer)); });
  return window;
}

}  // namespace karno::platform::updates
