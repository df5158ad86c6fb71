#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "karnoctl_documents.h"
#include "logged_texts.h"

namespace karno {
namespace {

using test::isLogged;
using test::LoggedText;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::string> linesNobodyLogs(const std::string& document) {
  const std::vector<LoggedText> texts = test::loggedTexts();
  std::vector<std::string> lines = test::quotedLogLines(test::textOfSource(document));
  std::erase_if(lines, [&](const std::string& line) { return isLogged(line, texts); });
  return lines;
}

TEST(DocumentedLogLines, AreLoggedByTheLauncher) {
  EXPECT_THAT(linesNobodyLogs("docs/administrators.md"), IsEmpty());
  EXPECT_THAT(test::quotedLogLines(test::textOfSource("docs/administrators.md")), SizeIs(testing::Ge(40U)));
}

TEST(DocumentedLogLines, CountOnlyWithTheirLevelAndAllTheirWords) {
  const std::vector<LoggedText> texts = test::loggedTexts();

  EXPECT_TRUE(isLogged("[INFO] Startup[LAUNCH] Launched Karno.app (pid: 4250)", texts));
  EXPECT_TRUE(
      isLogged("2026-11-21 09:12:41:307+0000 (4242) [WARN] Fuse[SYSTEM] Fuse is not installed", texts));
  EXPECT_FALSE(isLogged("[WARN] Startup[LAUNCH] Launched Karno.app (pid: 4250)", texts));
  EXPECT_FALSE(isLogged("[INFO] Startup[LAUNCH] Launched Karno.app (pid: 4250", texts));
  EXPECT_FALSE(isLogged("[WARN] Fuse[SYSTEM] Fuse is not there", texts));
  EXPECT_FALSE(isLogged("Fuse is not installed", texts));
}

}  // namespace
}  // namespace karno
