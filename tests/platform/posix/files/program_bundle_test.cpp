#include "platform/posix/files/program_bundle.h"

#include <gtest/gtest.h>

namespace karno::platform {
namespace {

TEST(ProgramBundle, IsTheOneWhoseProgramsFolderTheProgramLiesIn) {
  EXPECT_EQ(bundleOfProgram("/Applications/Karno.app/Contents/MacOS/karnoctl"), "/Applications/Karno.app");
  EXPECT_EQ(bundleOfProgram("/x/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)"),
            "/x/Karno.app/Contents/Helpers/Karno(Fuse).app");
}

TEST(ProgramBundle, IsNoneForAProgramElsewhere) {
  EXPECT_EQ(bundleOfProgram("/usr/local/bin/karnoctl"), std::nullopt);
  EXPECT_EQ(bundleOfProgram("/Applications/Karno.app/Contents/Helpers/karno-installer"), std::nullopt);
  EXPECT_EQ(bundleOfProgram("/Applications/Karno.app/MacOS/karnoctl"), std::nullopt);
  EXPECT_EQ(bundleOfProgram("karnoctl"), std::nullopt);
  EXPECT_EQ(bundleOfProgram(""), std::nullopt);
}

}  // namespace
}  // namespace karno::platform
