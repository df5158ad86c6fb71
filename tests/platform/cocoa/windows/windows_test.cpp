#include "platform/cocoa/windows/windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "elements_are.h"

namespace karno::platform::cocoa {
namespace {

using karno::test::ElementsAre;

TEST(PromptWindow, ClosingCallsEveryObservationOnce) {
  CocoaWindows windows;
  std::vector<std::string> calls;
  windows.promptWindow().addWillCloseObserver([&] { calls.push_back("first"); });
  windows.promptWindow().addWillCloseObserver([&] { calls.push_back("second"); });

  windows.promptWindow().close();
  windows.promptWindow().close();

  EXPECT_THAT(calls, ElementsAre("first", "second", "first", "second"));
}

TEST(PromptWindow, AnObserverThatRemovesAllIsTheLastOneCalled) {
  CocoaWindows windows;
  std::vector<std::string> calls;
  windows.promptWindow().addWillCloseObserver([&] {
    windows.promptWindow().removeWillCloseObservers();
    calls.push_back("first");
  });
  windows.promptWindow().addWillCloseObserver([&] { calls.push_back("second"); });

  windows.promptWindow().close();
  windows.promptWindow().close();

  EXPECT_THAT(calls, ElementsAre("first"));
}

TEST(PromptWindow, AnObserverThatThrowsDoesNotKeepTheNextFromHearing) {
  CocoaWindows windows;
  std::vector<std::string> calls;
  windows.promptWindow().addWillCloseObserver([] { throw std::runtime_error("no"); });
  windows.promptWindow().addWillCloseObserver([&] { calls.push_back("second"); });

  windows.promptWindow().close();

  EXPECT_THAT(calls, ElementsAre("second"));
}

TEST(PromptWindow, IsAlwaysTheSame) {
  CocoaWindows windows;

  EXPECT_EQ(&windows.promptWindow(), &windows.promptWindow());
}

}  // namespace
}  // namespace karno::platform::cocoa
