#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "../support/temporary_folder.h"

namespace karno::platform::trial {
namespace {

using karno::test::contentOf;
using ::testing::Contains;
using ::testing::IsEmpty;

constexpr std::array<std::string_view, 4> kSignsOfMessages = {"send(", "send<", "make(\"", "classNamed("};

// What the tests build of platform/macos; nothing runs of the rest but on a Mac.
bool isCompiledHere(const std::string& name) {
  return std::string_view(":" KARNO_MACOS_COMPILED ":").find(":" + name + ":") != std::string_view::npos;
}

bool sendsMessages(const std::string& text) {
  return std::ranges::any_of(kSignsOfMessages,
                             [&text](std::string_view sign) { return text.find(sign) != std::string::npos; });
}

std::vector<std::string> filesOfTheMac() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(KARNO_MACOS_FOLDER)) {
    if (entry.is_regular_file())
      names.push_back(entry.path().lexically_relative(KARNO_MACOS_FOLDER).string());
  }
  return names;
}

std::vector<std::string> messagesThatNoTestSends(const std::vector<std::string>& names) {
  std::vector<std::string> missing;
  std::ranges::copy_if(names, std::back_inserter(missing), [](const std::string& name) {
    return sendsMessages(contentOf(std::string(KARNO_MACOS_FOLDER) + "/" + name)) && !isCompiledHere(name);
  });
  return missing;
}

TEST(MacSources, AreKnownForWhatTheySend) {
  EXPECT_TRUE(sendsMessages("objc::send<bool>(manager, \"copy\")"));
  EXPECT_TRUE(sendsMessages("send(manager, \"copy\")"));
  EXPECT_TRUE(sendsMessages("objc::make(\"NSAlert\")"));
  EXPECT_TRUE(sendsMessages("objc::classNamed(\"NSAlert\")"));
  EXPECT_FALSE(sendsMessages("std::make_unique<Alert>()"));
  EXPECT_TRUE(isCompiledHere("bundles/bundles.cpp"));
  EXPECT_FALSE(isCompiledHere("undles/bundles.cpp"));
  EXPECT_FALSE(isCompiledHere("native_platform.cpp"));
}

TEST(MacSources, ThatSendMessagesAreAllCompiledForTests) {
  const auto names = filesOfTheMac();

  ASSERT_THAT(names, Contains("bundles/bundles.cpp"));
  EXPECT_THAT(messagesThatNoTestSends(names), IsEmpty());
}

}  // namespace
}  // namespace karno::platform::trial
