#include <gtest/gtest.h>

#include "terminal.h"

namespace karno::karnoctl {
namespace {

// What "post" complains of.
std::string complaintAbout(std::vector<std::string> words) {
  test::FakePlatform machine;
  test::Terminal terminal;
  words.insert(words.begin(), "post");
  EXPECT_EQ(terminal.run(words), 64);
  return terminal.err();
}

std::string complaint(const std::string& text) {
  return "karnoctl: " + text + "\nTry \"karnoctl help post\".\n";
}

TEST(KarnoctlPost, WantsAMessage) {
  EXPECT_EQ(complaintAbout({}), complaint("post what? (no message given)"));
  EXPECT_EQ(complaintAbout({"restart-wrapper", "user-selected-quit"}),
            complaint("one message at a time, not 'restart-wrapper' and 'user-selected-quit'"));
}

TEST(KarnoctlPost, SuggestsTheMessageThatWasMeant) {
  EXPECT_EQ(complaintAbout({"check-for-update"}),
            complaint("unknown message 'check-for-update'; did you mean 'check-for-updates'?"));
  EXPECT_EQ(complaintAbout({"CHECK-FOR-UPDATES"}), complaint("unknown message 'CHECK-FOR-UPDATES'"));
}

TEST(KarnoctlPost, RefusesAReasonWithoutAText) {
  EXPECT_EQ(complaintAbout({"restart-wrapper", "--reason"}), complaint("--reason needs a value"));
}

}  // namespace
}  // namespace karno::karnoctl
