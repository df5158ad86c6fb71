#include "karnoctl/report/tar_archive.h"

#include <gtest/gtest.h>

#include "fake_clock.h"
#include "tar_files.h"

namespace karno::karnoctl {
namespace {

TEST(TarArchive, HoldsItsFilesInOneFolder) {
  TarArchive archive("folder", test::kStartOfTest);
  archive.add("empty", "");
  archive.add("sub/full", std::string(512, 'x'));
  archive.add("more", "y");

  EXPECT_EQ(test::filesOfTar(archive.bytes()),
            (std::map<std::string, std::string>{
                {"folder/empty", ""}, {"folder/sub/full", std::string(512, 'x')}, {"folder/more", "y"}}));
  EXPECT_EQ(archive.bytes().size(), (1 + 2 + 2 + 2) * 512U);
}

TEST(TarArchive, KeepsTheEndOfANameThatIsTooLong) {
  TarArchive archive("folder", test::kStartOfTest);
  archive.add(std::string(200, 'x') + ".crash", "");

  EXPECT_TRUE(test::filesOfTar(archive.bytes()).contains("folder/" + std::string(94, 'x') + ".crash"));
}

TEST(TarArchive, SaysNothingOfAnOwner) {
  TarArchive archive("folder", test::kStartOfTest);
  archive.add("file", "");

  EXPECT_EQ(archive.bytes().substr(100, 24), std::string("0000600\0"
                                                         "0000000\0"
                                                         "0000000\0",
                                                         24));
  EXPECT_EQ(archive.bytes().substr(265, 64), std::string(64, '\0'));
}

}  // namespace
}  // namespace karno::karnoctl
