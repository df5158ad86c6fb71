#include <gtest/gtest.h>
#include <linux/mount.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "../support/temporary_folder.h"
#include "fresh_process.h"
#include "platform/linux/tree_copy.h"

namespace karno::platform {
namespace {

constexpr const char* kNoRight = "no right to mount a disk here: ";

// The header that declares the C library's call is a Mac's in this program.
bool mountedAs(const char* kind, const std::string& folder, unsigned long flags, const char* options) {
  return ::syscall(SYS_mount, "none", folder.c_str(), kind, flags, options) == 0;
}

// A disk of 1 MiB over a folder, which only this process sees and which goes with it. What kept it from that;
// empty when nothing did.
std::string mountSmallDisk(const std::string& folder) {
  // Root needs no user namespace, whose making may be forbidden.
  const bool isApart = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
  if (isApart && mountedAs(nullptr, "/", MS_REC | MS_PRIVATE, nullptr) &&
      mountedAs("tmpfs", folder, 0, "size=1m"))
    return {};
  return kNoRight + std::string(std::strerror(errno));
}

TEST(CopyOnAFullDisk, SaysThatThereIsNoRoom) {
  const test::TemporaryFolder folder;
  folder.write("A.app/Contents/small", "fits");
  folder.write("A.app/Contents/zlarge", std::string(std::size_t{2} << 20U, 'x'));
  std::filesystem::create_directory(folder / "disk");

  const std::string outcome = test::inFreshProcess([&] {
    const std::string hindrance = mountSmallDisk(folder / "disk");
    if (!hindrance.empty()) return hindrance;
    const auto error = copyTree(folder / "A.app", folder / "disk/A.app");
    return error ? error->domain() + " " + std::to_string(error->code()) : std::string("no error");
  });

  if (outcome.starts_with(kNoRight)) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "NSPOSIXErrorDomain " + std::to_string(ENOSPC));
}

}  // namespace
}  // namespace karno::platform
