#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "update_machine.h"

namespace karno::test {
namespace {

constexpr std::chrono::seconds kLimit{60};

// Version 1 trusts the old key; 2 is the last that it signs and brings the new one; 3 is signed by that.
class KeyChange : public ::testing::Test {
 protected:
  KeyChange() { machine_.useReleaseTool(); }

  void publish2() {
    machine_.publish(
        "2", "new",
        {"rotate", "--private", machine_.keyFile("old"), "--new-public", machine_.publicKey("new")});
  }
  void publish3() { machine_.publish("3", "new", {"feed", "--private", machine_.keyFile("new")}); }

  // The version that is installed after taking what is offered.
  std::string update(const std::string& wanted) {
    machine_.start();
    const auto offer = machine_.askForOffer();
    if (!offer) return "no offer: " + machine_->consoleText();
    machine_.answer(*offer, "Return");
    if (machine_->waitForEnd(kLimit) != 0) return "no end: " + machine_->consoleText();
    machine_->waitUntil([&] { return machine_.installedVersion() == wanted && machine_.remains().empty(); },
                        kLimit);
    return machine_.installedVersion();
  }

  UpdateMachine machine_;
};

TEST_F(KeyChange, IsCrossedByTheVersionThatBringsTheNewKey) {
  publish2();

  EXPECT_EQ(update("2"), "2");
  publish3();
  EXPECT_EQ(update("3"), "3");
  EXPECT_TRUE(machine_.isBundleWhole());
}

TEST_F(KeyChange, IsCrossedInTwoStepsByAMachineThatSleptThroughThatVersion) {
  publish2();
  publish3();

  EXPECT_EQ(update("2"), "2");
  EXPECT_EQ(update("3"), "3");
  EXPECT_TRUE(machine_.isBundleWhole());
}

}  // namespace
}  // namespace karno::test
