#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "expected_logs.h"
#include "places.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

// A pipe with a name that is full and that nobody reads until readAll().
class FullPipe {
 public:
  explicit FullPipe(std::filesystem::path path) : path_(std::move(path)) {
    std::filesystem::create_directories(path_.parent_path());
    if (::mkfifo(path_.c_str(), 0600) != 0) throw std::system_error(errno, std::generic_category(), path_);
    pipe_.reset(::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    const std::string page(4096, '.');
    while (::write(pipe_.get(), page.data(), page.size()) > 0) continue;
  }

  const std::filesystem::path& path() const { return path_; }

  std::string readAll() const {
    std::string text;
    std::array<char, 4096> bytes = {};
    for (ssize_t count = 0; (count = ::read(pipe_.get(), bytes.data(), bytes.size())) > 0;) {
      text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  std::filesystem::path path_;
  platform::ScopedDescriptor pipe_;
};

// The start command, with what the launcher prints going into that pipe.
std::vector<std::string> startInto(const FullPipe& pipe, const Machine& machine) {
  return {"bash",         "-c",       R"(exec "$1" "$2" >"$3")", "bash", builtTools().commands / "start",
          machine.root(), pipe.path()};
}

TEST(UnreadConsole, IsNoReasonToKeepTheClientFromStarting) {
  Machine machine(builtTools());
  const FullPipe pipe(machine.root() / "tmp/console");
  Subprocess start(startInto(pipe, machine), machine.root() / "tmp/start.txt");

  const bool isStarted = machine.waitUntil(
      [&] { return testing::Value(machine.log(), testing::Contains(kStarted)); }, std::chrono::seconds(10));

  EXPECT_TRUE(isStarted);
  machine.in({"karnoctl", "post", "user-selected-quit"});
  EXPECT_EQ(start.waitForEnd(std::chrono::seconds(40)), 0);
  EXPECT_THAT(
      machine.log(),
      ElementsAreArray(joined(
          {openingMessages(), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

TEST(UnreadConsole, SaysWhatItDidNotShowOnceItIsRead) {
  Machine machine(builtTools());
  const FullPipe pipe(machine.root() / "tmp/console");
  Subprocess start(startInto(pipe, machine), machine.root() / "tmp/start.txt");
  ASSERT_TRUE(machine.waitUntil([&] { return testing::Value(machine.log(), testing::Contains(kStarted)); },
                                std::chrono::seconds(10)));

  pipe.readAll();
  machine.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_EQ(start.waitForEnd(std::chrono::seconds(40)), 0);
  const auto before = joined({openingMessages(), {kFirstStartup}, fileProviderMessages()}).size();
  const std::string shown = pipe.readAll();
  EXPECT_THAT(shown, HasSubstr("Console: lines that nobody read and that are therefore not shown: " +
                               std::to_string(before) + "\n"));
  EXPECT_THAT(shown, HasSubstr("[INFO] Notify[LISTEN] Received 'user-selected-quit'\n"));
}

}  // namespace
}  // namespace karno::test
