#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "../../cocoa/screen.h"

namespace karno::test {
namespace {

using ::testing::EndsWith;

std::vector<std::string> sentencesWithFonts() {
  std::istringstream output(onScreen("application/fonts").output);
  std::vector<std::string> sentences;
  for (std::string line; std::getline(output, line);) {
    if (line.find(" | ") != std::string::npos) sentences.push_back(line);
  }
  return sentences;
}

TEST(TextsOnScreen, HaveAllTheirLettersInOneWeight) {
  const std::vector<std::string> sentences = sentencesWithFonts();

  EXPECT_EQ(sentences.size(), 7U);
  EXPECT_THAT(sentences, ::testing::Each(EndsWith(" | all letters, 1 weight | all letters, 1 weight")));
}

}  // namespace
}  // namespace karno::test
