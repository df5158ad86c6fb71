#pragma once
#include <memory>
#include <vector>

#include "platform/cocoa/windows/message_panel.h"
#include "platform/cocoa/windows/outlets.h"

namespace karno::platform::cocoa {

// The native window is made when it is first shown: a start that never asks anything does not pay for it.
class CocoaPromptWindow final : public PromptWindow {
 public:
  TextLabel& fuseMessage() override { return fuseMessage_; }
  TextLabel& continueMessage() override { return continueMessage_; }
  PushButton& cancelButton() override { return cancelButton_; }
  PushButton& continueButton() override { return continueButton_; }

  void makeKeyAndOrderFront() override;

  // What a handler throws is written to the console log; the next one is told all the same.
  void addWillCloseObserver(std::function<void()> handler) override;
  void removeWillCloseObservers() override;
  void close() override;

 private:
  struct Observer {
    std::function<void()> handler;
    bool removed = false;
  };

  void makePanel();
  void fillPanel();
  void tellWillClose() const;

  LabelOutlet fuseMessage_{[this] { fillPanel(); }};
  LabelOutlet continueMessage_{[this] { fillPanel(); }};
  ButtonOutlet cancelButton_{[this] { fillPanel(); }};
  ButtonOutlet continueButton_{[this] { fillPanel(); }};

  // Shared, so that a handler that removes itself lives until it returns.
  std::vector<std::shared_ptr<Observer>> observers_;
  std::unique_ptr<MessagePanel> panel_;
};

}  // namespace karno::platform::cocoa
