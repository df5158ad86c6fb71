#include "fresh_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "fake_platform.h"

namespace karno::test {
namespace {

std::string outcomeOf(const std::function<std::string()>& scenario) {
  std::string outcome;
  try {
    outcome = scenario();
  } catch (const std::exception& error) {
    outcome = std::string("threw: ") + error.what();
  }
  if (::testing::Test::HasFailure()) outcome += " (an expectation failed)";
  return outcome;
}

void writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

std::string inFreshProcess(const std::function<std::string()>& scenario) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    close(ends[0]);
    writeAll(ends[1], outcomeOf(scenario));
    _exit(0);
  }
  close(ends[1]);
  std::string text = readAll(ends[0]);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) text += " (crashed with status " + std::to_string(status) + ")";
  return text;
}

std::vector<std::string> outcomesOtherThan(const std::string& expected, int count,
                                           const std::function<std::string(std::uint64_t)>& scenario) {
  std::vector<std::string> others;
  const std::uint64_t first = FakePlatform::defaultSeed();
  for (std::uint64_t seed = first; seed < first + static_cast<std::uint64_t>(count); ++seed) {
    const std::string outcome = inFreshProcess([&] { return scenario(seed); });
    if (outcome != expected) others.push_back("seed " + std::to_string(seed) + ": " + outcome);
  }
  return others;
}

}  // namespace karno::test
