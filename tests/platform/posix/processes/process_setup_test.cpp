#include "platform/posix/processes/process_setup.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "../../support/forked_process.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

using test::ForkedProcess;
using test::TemporaryFolder;

constexpr int kFine = 42;  // what a process exits with when all was as it should be

TEST(ProcessSetup, MakesABrokenPipeAnErrorOfTheWrite) {
  ForkedProcess process([] {
    ::signal(SIGPIPE, SIG_DFL);
    setUpProcess();
    std::array<int, 2> ends = {};
    if (::pipe(ends.data()) != 0) return 1;
    ::close(ends[0]);
    return ::write(ends[1], "x", 1) == -1 && errno == EPIPE ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
}

TEST(ProcessSetup, MakesAFileThatMayNotGrowAnErrorOfTheWrite) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  ForkedProcess process([&] {
    ::signal(SIGXFSZ, SIG_DFL);
    setUpProcess();
    const rlimit nothing = {.rlim_cur = 0, .rlim_max = 0};
    if (::setrlimit(RLIMIT_FSIZE, &nothing) != 0) return 1;
    const ScopedDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT, 0600));
    return ::write(file.get(), "x", 1) == -1 && errno == EFBIG ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
}

TEST(ProcessSetup, KeepsChildrenUntilTheyAreWaitedForWhateverTheParentHadSet) {
  ForkedProcess process([] {
    ::signal(SIGCHLD, SIG_IGN);
    setUpProcess();
    ForkedProcess child([] { return 7; });
    return child.exitStatus() == 7 ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
}

TEST(ProcessSetup, KeepsFilesOffTheNumbersOfClosedStandardStreams) {
  ForkedProcess process([] {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
    setUpProcess();
    return ::dup(STDIN_FILENO) > STDERR_FILENO ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
}

TEST(ProcessSetup, OpensNothingWhereAllStreamsAreOpen) {
  ForkedProcess process([] {
    const ScopedDescriptor null(::open("/dev/null", O_RDWR));
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(null.get(), stream);
    const int free = ::dup(null.get());
    ::close(free);
    setUpProcess();
    return ::dup(null.get()) == free ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
}

TEST(ProcessSetup, LeavesAnOpenStandardStreamAlone) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const ScopedDescriptor reader(ends[0]);
  ScopedDescriptor writer(ends[1]);
  ForkedProcess process([&] {
    ::dup2(writer.get(), STDOUT_FILENO);
    setUpProcess();
    return ::write(STDOUT_FILENO, "x", 1) == 1 ? kFine : 2;
  });

  EXPECT_EQ(process.exitStatus(), kFine);
  char byte = 0;
  EXPECT_EQ(::read(reader.get(), &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
}

// The tests of this folder have made it, in a process to which both signals meant its end.
TEST(NativePlatform, HasSetTheProcessUp) {
  for (const int number : {SIGPIPE, SIGXFSZ}) {
    struct sigaction now = {};

    ::sigaction(number, nullptr, &now);

    EXPECT_EQ(now.sa_handler, SIG_IGN) << number;
  }
}

}  // namespace
}  // namespace karno::platform
