#include "app/progress_window_controller.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using ::testing::IsEmpty;

class Recorder final : public ProgressWindowDelegate {
 public:
  void progressWindowControllerUserPressedCancel(ProgressWindowController& controller) override {
    cancelled.push_back(&controller);
  }
  std::vector<ProgressWindowController*> cancelled;
};

test::FakeProgressState& windowOf(FakePlatform& machine) { return *machine.windows.progress.at(0); }

TEST(ProgressWindow, ShowsItsTextsAndItsProgress) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();

  controller->setTitle("Karno");
  controller->setMessage("Installing…");
  controller->setProgress(42);

  EXPECT_EQ(controller->title(), "Karno");
  EXPECT_EQ(controller->message(), "Installing…");
  EXPECT_EQ(controller->progress(), 42);
  EXPECT_EQ(windowOf(machine).title, "Karno");
  EXPECT_EQ(windowOf(machine).textField.stringValue(), "Installing…");
  EXPECT_EQ(windowOf(machine).progressIndicator.doubleValue(), 42.0);
}

TEST(ProgressWindow, BeginsWithoutTextsAtZero) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();

  EXPECT_EQ(controller->title(), "");
  EXPECT_EQ(controller->message(), "");
  EXPECT_EQ(controller->progress(), 0);
  EXPECT_THAT(windowOf(machine).calls, IsEmpty());
}

TEST(ProgressWindow, ShowingItResetsTheBarButNotTheProgress) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();
  controller->setProgress(42);

  controller->showWindow();

  EXPECT_THAT(windowOf(machine).calls, ElementsAre("value 42", "show", "min 0", "max 100", "value 0"));
  EXPECT_EQ(controller->progress(), 42);
}

class ProgressBeyondTheBar : public ::testing::TestWithParam<std::int64_t> {};

// The bar itself draws no more than its ends.
TEST_P(ProgressBeyondTheBar, IsHandedOnAsItIs) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();

  controller->setProgress(GetParam());

  EXPECT_EQ(controller->progress(), GetParam());
  EXPECT_EQ(windowOf(machine).progressIndicator.doubleValue(), static_cast<double>(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(ProgressWindow, ProgressBeyondTheBar,
                         ::testing::Values(-1, -5'000'000'000, 101, 5'000'000'000));

TEST(ProgressWindow, ClosingItThenStopsTheAnimation) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();

  controller->close();

  EXPECT_THAT(windowOf(machine).calls, ElementsAre("close", "stop"));
}

TEST(ProgressWindow, HandsACancelToItsDelegate) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();
  const auto delegate = std::make_shared<Recorder>();
  controller->setDelegate(delegate);

  windowOf(machine).cancelButton.press();

  EXPECT_EQ(controller->delegate(), delegate);
  EXPECT_THAT(delegate->cancelled, ElementsAre(controller.get()));
}

TEST(ProgressWindow, IgnoresACancelWithoutADelegate) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();
  controller->setDelegate(std::make_shared<Recorder>());

  windowOf(machine).cancelButton.press();

  EXPECT_EQ(controller->delegate(), nullptr);
  EXPECT_THAT(windowOf(machine).calls, IsEmpty());
}

TEST(ProgressWindow, ACancelAfterItsEndDoesNothing) {
  FakePlatform machine;
  auto controller = ProgressWindowController::make();
  const auto delegate = std::make_shared<Recorder>();
  controller->setDelegate(delegate);
  controller.reset();

  windowOf(machine).cancelButton.press();

  EXPECT_THAT(delegate->cancelled, IsEmpty());
}

TEST(ProgressWindow, NamesItsCancelButtonInTheUsersLanguage) {
  FakePlatform machine;
  machine.withStrings(R"({"CANCEL": "Abbrechen"})");

  const auto controller = ProgressWindowController::make();

  EXPECT_EQ(controller->cancelButton().title(), "Abbrechen");
}

}  // namespace
}  // namespace karno
