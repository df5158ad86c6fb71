#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "machine.h"
#include "places.h"
#include "subprocess.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

// A machine whose launchers have children that end in random ways.
class StormyMachine {
 public:
  StormyMachine(unsigned seed, int starts) {
    fs::copy_file(stormClient(), machine_.helper() / "Contents/MacOS/Karno",
                  fs::copy_options::overwrite_existing);
    storm_ =
        std::make_unique<Subprocess>(std::vector<std::string>{withDisplay(), childStorm(), machine_.root(),
                                                              std::to_string(seed), std::to_string(starts)},
                                     report());
  }

  std::optional<int> waitForEnd() { return storm_->waitForEnd(std::chrono::seconds(400)); }
  std::string reportText() const { return runCommand({"cat", report()}, std::chrono::seconds(10)).output; }

 private:
  std::string report() const { return (machine_.root() / "var/log/report.txt").string(); }

  Machine machine_{builtTools()};
  std::unique_ptr<Subprocess> storm_;
};

// The seed begins the report. What happens between processes is not the same for the same seed, but the ends
// and the messages are.
TEST(ManyChildren, LeaveNoZombieNoOrphanNoSecondChildAndNoEndUntold) {
  constexpr int kMachines = 4;
  constexpr int kStartsEach = 50;
  std::random_device seeds;
  std::vector<std::unique_ptr<StormyMachine>> machines;

  for (int count = 0; count < kMachines; ++count) {
    machines.push_back(std::make_unique<StormyMachine>(seeds(), kStartsEach));
  }

  for (const auto& machine : machines) {
    EXPECT_EQ(machine->waitForEnd(), 0) << machine->reportText();
    std::cout << machine->reportText();
  }
}

}  // namespace
}  // namespace karno::test
