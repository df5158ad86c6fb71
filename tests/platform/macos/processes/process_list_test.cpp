#include "platform/macos/processes/process_list.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libproc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "elements_are.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// The kernel's table of processes.
struct Kernel {
  Kernel() { current = this; }
  ~Kernel() { current = nullptr; }
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  static inline Kernel* current = nullptr;

  struct Entry {
    std::uint32_t parent;
    std::string path;
    bool hasInformation = true;
  };
  std::vector<int> identifiers;
  std::map<int, Entry> entries;
  std::vector<std::string> lines;
  int countAtFirst = -1;  // what the first question hears; as many as there are where negative
  bool fails = false;

  void add(int identifier, Entry entry) {
    identifiers.push_back(identifier);
    entries.emplace(identifier, std::move(entry));
  }
};

Kernel& kernel() { return *Kernel::current; }

std::vector<int> identifiersOf(const std::vector<RunningProcess>& processes) {
  std::vector<int> found;
  for (const RunningProcess& process : processes) found.push_back(process.processIdentifier);
  return found;
}

class MacProcesses : public testing::Test {
 protected:
  Kernel kernel_;
  const MacProcessList processes_{};
};

TEST_F(MacProcesses, AreThisUsersWithParentPathAndStart) {
  kernel_.add(4711, {.parent = 1, .path = "/Applications/Karno.app/Contents/MacOS/Karno"});

  const auto found = processes_.runningProcesses();

  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found.front().processIdentifier, 4711);
  EXPECT_EQ(found.front().parentProcessIdentifier, 1);
  EXPECT_EQ(found.front().executablePath, "/Applications/Karno.app/Contents/MacOS/Karno");
  EXPECT_EQ(found.front().startDate,
            Date(std::chrono::seconds(1'700'000'000) + std::chrono::microseconds(250'000)));
  EXPECT_THAT(kernel_.lines,
              ElementsAre(fmt::format("list by 4 of {} without room", ::geteuid()),
                          fmt::format("list by 4 of {} with room for 65", ::geteuid()),
                          "information 3 of 4711, argument 0, 136 bytes", "path of 4711, 4096 bytes"));
}

TEST_F(MacProcesses, ComeInAscendingOrder) {
  kernel_.add(30, {.parent = 1, .path = "/c"});
  kernel_.add(10, {.parent = 1, .path = "/a"});
  kernel_.add(20, {.parent = 1, .path = "/b"});

  EXPECT_THAT(identifiersOf(processes_.runningProcesses()), ElementsAre(10, 20, 30));
}

TEST_F(MacProcesses, ThatHaveEndedOrAreTheKernelsAreLeftOut) {
  kernel_.add(0, {.parent = 0, .path = "/kernel"});
  kernel_.add(10, {.parent = 1, .path = "", .hasInformation = true});
  kernel_.add(20, {.parent = 1, .path = "/b", .hasInformation = false});
  kernel_.add(30, {.parent = 1, .path = "/c"});

  EXPECT_THAT(identifiersOf(processes_.runningProcesses()), ElementsAre(30));
}

TEST_F(MacProcesses, ThatWereJustStartedFindRoom) {
  for (int identifier = 1; identifier <= 60; ++identifier) {
    kernel_.add(identifier, {.parent = 1, .path = "/a"});
  }
  kernel_.countAtFirst = 1;

  EXPECT_THAT(processes_.runningProcesses(), SizeIs(60));
}

TEST_F(MacProcesses, BeyondAllRoomAreLeftOut) {
  for (int identifier = 1; identifier <= 100; ++identifier) {
    kernel_.add(identifier, {.parent = 1, .path = "/a"});
  }
  kernel_.countAtFirst = 1;

  EXPECT_THAT(processes_.runningProcesses(), SizeIs(65));
}

TEST_F(MacProcesses, AreNoneWhenTheKernelTellsNone) {
  EXPECT_THAT(processes_.runningProcesses(), IsEmpty());

  kernel_.countAtFirst = 1;
  kernel_.fails = true;
  EXPECT_THAT(processes_.runningProcesses(), IsEmpty());
}

}  // namespace
}  // namespace karno::platform::trial

using karno::platform::trial::kernel;

int proc_listpids(std::uint32_t type, std::uint32_t typeinfo, void* buffer, int buffersize) {
  auto& table = kernel();
  const std::string question = fmt::format("list by {} of {} ", type, typeinfo);
  if (buffer == nullptr) {
    table.lines.push_back(question + "without room");
    const int count =
        table.countAtFirst < 0 ? static_cast<int>(table.identifiers.size()) : table.countAtFirst;
    return count * static_cast<int>(sizeof(int));
  }
  const std::size_t room = static_cast<std::size_t>(buffersize) / sizeof(int);
  table.lines.push_back(question + fmt::format("with room for {}", room));
  if (table.fails) return -1;
  const std::size_t bytes = std::min(room, table.identifiers.size()) * sizeof(int);
  std::memcpy(buffer, table.identifiers.data(), bytes);
  return static_cast<int>(bytes);
}

int proc_pidinfo(int pid, int flavor, std::uint64_t arg, void* buffer, int buffersize) {
  kernel().lines.push_back(
      fmt::format("information {} of {}, argument {}, {} bytes", flavor, pid, arg, buffersize));
  const auto& entry = kernel().entries.at(pid);
  if (!entry.hasInformation) return 0;
  proc_bsdinfo information = {};
  information.pbi_ppid = entry.parent;
  information.pbi_start_tvsec = 1'700'000'000;
  information.pbi_start_tvusec = 250'000;
  std::memcpy(buffer, &information, sizeof(information));
  return buffersize;
}

int proc_pidpath(int pid, void* buffer, std::uint32_t buffersize) {
  kernel().lines.push_back(fmt::format("path of {}, {} bytes", pid, buffersize));
  const std::string& path = kernel().entries.at(pid).path;
  std::memcpy(buffer, path.data(), path.size());
  return static_cast<int>(path.size());
}
