#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "../../support/temporary_folder.h"
#include "fresh_process.h"
#include "platform/linux/files/tree_copy.h"
#include "small_disk.h"

namespace karno::platform {
namespace {

TEST(CopyOnAFullDisk, SaysThatThereIsNoRoom) {
  const test::TemporaryFolder folder;
  folder.write("A.app/Contents/small", "fits");
  folder.write("A.app/Contents/zlarge", std::string(std::size_t{2} << 20U, 'x'));
  std::filesystem::create_directory(folder / "disk");

  const std::string outcome = test::inFreshProcess([&] {
    const test::SmallDisk disk(folder / "disk", std::uintmax_t{1} << 20U);
    if (!disk.hindrance().empty()) return disk.hindrance();
    const auto error = copyTree(folder / "A.app", folder / "disk/A.app");
    return error ? error->domain() + " " + std::to_string(error->code()) : std::string("no error");
  });

  if (outcome.starts_with(test::SmallDisk::kNoRight)) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "NSPOSIXErrorDomain " + std::to_string(ENOSPC));
}

}  // namespace
}  // namespace karno::platform
