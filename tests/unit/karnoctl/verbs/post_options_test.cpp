#include "karnoctl/verbs/post_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace karno::karnoctl {
namespace {

using Words = std::vector<std::string>;
using Parsed = std::variant<PostOptions, UsageError>;

Parsed refused(const char* text) { return UsageError{text, "post"}; }

TEST(PostOptions, TakeAMessage) {
  const Parsed parsed = parsePostOptions(Words{"user-selected-quit"});

  EXPECT_EQ(parsed, Parsed(PostOptions{.message = "user-selected-quit"}));
}

TEST(PostOptions, TakeAReasonBeforeOrAfterTheMessage) {
  const Parsed expected(PostOptions{.message = "app-is-terminating-abnormally", .reason = "disk full"});

  EXPECT_EQ(parsePostOptions(Words{"app-is-terminating-abnormally", "--reason", "disk full"}), expected);
  EXPECT_EQ(parsePostOptions(Words{"--reason=disk full", "app-is-terminating-abnormally"}), expected);
}

TEST(PostOptions, TakeAnyTextAsTheReason) {
  const Parsed parsed = parsePostOptions(Words{"app-is-terminating-abnormally", "--reason", "--help"});

  EXPECT_EQ(parsed, Parsed(PostOptions{.message = "app-is-terminating-abnormally", .reason = "--help"}));
}

TEST(PostOptions, TellAnEmptyReasonFromNone) {
  const Parsed parsed = parsePostOptions(Words{"restart-wrapper", "--reason="});

  EXPECT_EQ(parsed, Parsed(PostOptions{.message = "restart-wrapper", .reason = ""}));
}

TEST(PostOptions, AskForHelp) {
  EXPECT_EQ(parsePostOptions(Words{"--help"}), Parsed(PostOptions{.help = true}));
}

TEST(PostOptions, RefuseAReasonWithoutText) {
  EXPECT_EQ(parsePostOptions(Words{"restart-wrapper", "--reason"}), refused("--reason needs a text"));
}

TEST(PostOptions, RefuseToPostNothing) {
  EXPECT_EQ(parsePostOptions(Words{}), refused("post what? (no message given)"));
}

TEST(PostOptions, RefuseTwoMessages) {
  EXPECT_EQ(parsePostOptions(Words{"restart-wrapper", "user-selected-quit"}),
            refused("one message at a time, not 'restart-wrapper' and 'user-selected-quit'"));
}

TEST(PostOptions, SuggestTheMessageThatWasMeant) {
  EXPECT_EQ(parsePostOptions(Words{"check-for-update"}),
            refused("unknown message 'check-for-update'; did you mean 'check-for-updates'?"));
  EXPECT_EQ(parsePostOptions(Words{"CHECK-FOR-UPDATES"}), refused("unknown message 'CHECK-FOR-UPDATES'"));
}

TEST(PostOptions, RefuseOptionsTheyDoNotKnow) {
  EXPECT_EQ(parsePostOptions(Words{"restart-wrapper", "--now"}), refused("unknown option '--now'"));
}

TEST(PostOptions, EndAtTwoDashes) {
  EXPECT_EQ(parsePostOptions(Words{"--", "--reason"}), refused("unknown message '--reason'"));
}

}  // namespace
}  // namespace karno::karnoctl
