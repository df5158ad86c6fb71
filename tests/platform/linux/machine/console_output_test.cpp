#include "platform/linux/machine/console_output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "../../support/forked_process.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/processes/process_setup.h"

namespace karno::platform {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using test::ForkedProcess;
using test::TemporaryFolder;

constexpr std::size_t kPipeBytes = 4096;  // the least that a pipe can be made to hold
constexpr uid_t kNobody = 65534;

std::string notShown(int lines) {
  return "Console: lines that nobody read and that are therefore not shown: " + std::to_string(lines) + "\n";
}

// So many bytes, or what there is when the other end is closed.
std::string readBytes(int descriptor, std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t used = 0;
  while (used < count) {
    const ssize_t part = ::read(descriptor, bytes.data() + used, count - used);
    if (part <= 0) break;
    used += static_cast<std::size_t>(part);
  }
  bytes.resize(used);
  return bytes;
}

// A pipe as a console, small enough to be filled by a few lines.
class PipedConsole : public testing::Test {
 protected:
  PipedConsole() {
    std::array<int, 2> pair = {};
    EXPECT_EQ(::pipe2(pair.data(), O_CLOEXEC), 0);
    reader.reset(pair[0]);
    writer.reset(pair[1]);
    EXPECT_EQ(::fcntl(writer.get(), F_SETPIPE_SZ, kPipeBytes), static_cast<int>(kPipeBytes));
  }

  void fill() {
    EXPECT_EQ(::write(writer.get(), full.data(), full.size()), static_cast<ssize_t>(kPipeBytes));
  }
  std::string readAll() {
    writer.reset();
    return readBytes(reader.get(), 1U << 20U);
  }

  const std::string full = std::string(kPipeBytes - 1, '.') + "\n";
  ScopedDescriptor reader;
  ScopedDescriptor writer;
};

TEST_F(PipedConsole, ShowsEveryLineToWhoReads) {
  {
    ConsoleOutput console(writer.get());

    console.writeLine("first");
    console.writeLine("");
    console.writeLine("third");
  }

  EXPECT_EQ(readAll(), "first\n\nthird\n");
}

TEST_F(PipedConsole, DropsLinesThatNobodyReadsAndThenSaysHowMany) {
  fill();
  {
    ConsoleOutput console(writer.get(), milliseconds(5));
    console.writeLine("dropped");
    console.writeLine("dropped as well");
    ASSERT_EQ(readBytes(reader.get(), kPipeBytes), full);

    console.writeLine("shown");
    console.writeLine("shown as well");
  }

  EXPECT_EQ(readAll(), notShown(2) + "shown\nshown as well\n");
}

TEST_F(PipedConsole, CountsEachStretchOfDroppedLinesAnew) {
  fill();
  {
    ConsoleOutput console(writer.get(), milliseconds(5));
    console.writeLine("dropped");
    readBytes(reader.get(), kPipeBytes);
    console.writeLine("shown");
    readBytes(reader.get(), (notShown(1) + "shown\n").size());
    fill();
    console.writeLine("dropped");
    console.writeLine("dropped as well");
    console.writeLine("so is this");
    readBytes(reader.get(), kPipeBytes);

    console.writeLine("shown again");
  }

  EXPECT_EQ(readAll(), notShown(3) + "shown again\n");
}

TEST_F(PipedConsole, GivesAReaderTime) {
  fill();
  {
    ConsoleOutput console(writer.get(), hours(1));
    std::jthread caller([&] { console.writeLine("late"); });

    EXPECT_EQ(readBytes(reader.get(), kPipeBytes), full);
  }

  EXPECT_EQ(readAll(), "late\n");
}

// Waiting for each of them would take a quarter of an hour, which no test is given.
TEST_F(PipedConsole, WaitsOnceForAllLinesThatNobodyReads) {
  fill();
  {
    ConsoleOutput console(writer.get(), milliseconds(100));
    for (int line = 0; line < 10'000; ++line) console.writeLine("dropped");
    readBytes(reader.get(), kPipeBytes);

    console.writeLine("shown");
  }

  EXPECT_EQ(readAll(), notShown(10'000) + "shown\n");
}

TEST_F(PipedConsole, LeavesThePipeAsItIsForOtherProcesses) {
  const int before = ::fcntl(writer.get(), F_GETFL);
  fill();
  ConsoleOutput console(writer.get(), milliseconds(5));

  console.writeLine("dropped");

  EXPECT_EQ(::fcntl(writer.get(), F_GETFL), before);
  EXPECT_EQ(before & O_NONBLOCK, 0);
}

TEST_F(PipedConsole, BeginsANewLineAfterOneThatWasCut) {
  {
    ConsoleOutput console(writer.get(), milliseconds(5));
    console.writeLine(std::string(3 * kPipeBytes, 'x'));
    ASSERT_EQ(readBytes(reader.get(), kPipeBytes), std::string(kPipeBytes, 'x'));

    console.writeLine("shown");
  }

  EXPECT_EQ(readAll(), "\n" + notShown(1) + "shown\n");
}

TEST_F(PipedConsole, WritesALineWholeThatIsLongerThanThePipe) {
  const std::string line(20'000, 'x');
  {
    ConsoleOutput console(writer.get(), hours(1));
    std::jthread caller([&] { console.writeLine(line); });

    EXPECT_EQ(readBytes(reader.get(), line.size() + 1), line + "\n");
  }
}

TEST_F(PipedConsole, IsLeftAloneByThreadsWhileOneWaitsForIt) {
  fill();
  {
    ConsoleOutput console(writer.get(), milliseconds(20));
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&] {
        for (int line = 0; line < 25; ++line) console.writeLine("dropped");
      });
    }
    threads.clear();
    readBytes(reader.get(), kPipeBytes);

    console.writeLine("shown");
  }

  EXPECT_EQ(readAll(), notShown(100) + "shown\n");
}

// Another user's pipe cannot be opened once more. It says that it has room when it has a whole page.
TEST_F(PipedConsole, OfAnotherUserIsNotWaitedForEither) {
  ASSERT_EQ(::fcntl(writer.get(), F_SETPIPE_SZ, 2 * kPipeBytes), static_cast<int>(2 * kPipeBytes));
  fill();
  fill();
  ForkedProcess process([this] {
    ::fchmod(writer.get(), 0);
    if (::geteuid() == 0 && ::setuid(kNobody) != 0) return 1;
    ConsoleOutput console(writer.get(), milliseconds(5));
    console.writeLine("dropped");
    console.writeLine(std::string(2 * kPipeBytes, 'x'));
    readBytes(reader.get(), 2 * kPipeBytes);
    console.writeLine("shown");
    return 42;
  });

  EXPECT_EQ(process.exitStatus(), 42);
  EXPECT_EQ(readAll(), notShown(2) + "shown\n");
}

TEST_F(PipedConsole, OutlivesItsReader) {
  setUpProcess();
  ConsoleOutput console(writer.get(), hours(1));
  console.writeLine("read by nobody");
  reader.reset();

  console.writeLine("refused");

  EXPECT_EQ(::write(writer.get(), "x", 1), -1);
}

TEST_F(PipedConsole, IsForgottenWhenAFileTakesItsPlace) {
  const TemporaryFolder folder;
  fill();
  ConsoleOutput console(writer.get(), milliseconds(5));
  console.writeLine("dropped");
  const ScopedDescriptor file(::open((folder / "file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_GE(::dup2(file.get(), writer.get()), 0);

  console.writeLine("in the file");

  EXPECT_EQ(test::contentOf(folder / "file"), "in the file\n");
  EXPECT_EQ(readBytes(reader.get(), 2 * kPipeBytes), full);  // and nobody can write to it any more
}

TEST(SocketConsole, DropsLinesThatNobodyReadsAndThenSaysHowMany) {
  std::array<int, 2> pair = {};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()), 0);
  ScopedDescriptor reader(pair[0]);
  ScopedDescriptor writer(pair[1]);
  const std::string full(kPipeBytes, '.');
  std::size_t filled = 0;
  while (::send(writer.get(), full.data(), full.size(), MSG_DONTWAIT) > 0) ++filled;
  ConsoleOutput console(writer.get(), milliseconds(5));
  console.writeLine("dropped");
  ASSERT_EQ(readBytes(reader.get(), filled * kPipeBytes).size(), filled * kPipeBytes);

  console.writeLine("shown");

  writer.reset();
  EXPECT_EQ(readBytes(reader.get(), 2 * kPipeBytes), notShown(1) + "shown\n");
}

// Ctrl-S stops what is shown.
TEST(TerminalConsole, DropsLinesWhileTheTerminalIsStopped) {
  ScopedDescriptor device(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(device.isOpen() && ::grantpt(device.get()) == 0 && ::unlockpt(device.get()) == 0);
  std::array<char, 64> name = {};
  ASSERT_EQ(::ptsname_r(device.get(), name.data(), name.size()), 0);
  ScopedDescriptor terminal(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios settings = {};
  ASSERT_EQ(::tcgetattr(terminal.get(), &settings), 0);
  ::cfmakeraw(&settings);
  ASSERT_EQ(::tcsetattr(terminal.get(), TCSANOW, &settings), 0);
  ConsoleOutput console(terminal.get(), milliseconds(5));
  ASSERT_EQ(::tcflow(terminal.get(), TCOOFF), 0);
  console.writeLine("dropped");
  ASSERT_EQ(::tcflow(terminal.get(), TCOON), 0);

  console.writeLine("shown");

  const std::string expected = notShown(1) + "shown\n";
  EXPECT_EQ(readBytes(device.get(), expected.size()), expected);
}

}  // namespace
}  // namespace karno::platform
