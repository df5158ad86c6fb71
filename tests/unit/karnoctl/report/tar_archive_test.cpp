#include "karnoctl/report/report_content.h"

#include <gtest/gtest.h>

#include "fake_clock.h"
#include "tar_files.h"

namespace karno::karnoctl {
namespace {

std::string archiveOf(const std::vector<ReportFile>& files) {
  return tarArchive("folder", files, test::kStartOfTest);
}

TEST(TarArchive, HoldsItsFilesInOneFolder) {
  const std::string archive = archiveOf({{"empty", ""}, {"sub/full", std::string(512, 'x')}, {"more", "y"}});

  EXPECT_EQ(test::filesOfTar(archive),
            (std::map<std::string, std::string>{
                {"folder/empty", ""}, {"folder/sub/full", std::string(512, 'x')}, {"folder/more", "y"}}));
  EXPECT_EQ(archive.size(), (1 + 2 + 2 + 2) * 512U);
}

TEST(TarArchive, KeepsTheEndOfANameThatIsTooLong) {
  const std::string archive = archiveOf({{std::string(200, 'x') + ".crash", ""}});

  EXPECT_TRUE(test::filesOfTar(archive).contains("folder/" + std::string(94, 'x') + ".crash"));
}

TEST(TarArchive, SaysNothingOfAnOwner) {
  const std::string archive = archiveOf({{"file", ""}});

  EXPECT_EQ(archive.substr(100, 24), std::string("0000600\0"
                                                 "0000000\0"
                                                 "0000000\0",
                                                 24));
  EXPECT_EQ(archive.substr(265, 64), std::string(64, '\0'));
}

}  // namespace
}  // namespace karno::karnoctl
