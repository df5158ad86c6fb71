#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// The entry of test programs whose cases need fresh singletons: each selected case runs in a process of its
// own. A single one runs in this process, where a debugger finds it.
namespace {

constexpr int kHasFailures = 1;

struct Run {
  bool hasPassed = false;
  std::string output;
};

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
    text.append(buffer.data(), static_cast<std::size_t>(count));
  return text;
}

// Runs GoogleTest in a process of its own, with the flags that `setFlags` sets.
Run runApart(const std::function<void()>& setFlags) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
    setFlags();
    const int result = RUN_ALL_TESTS();
    std::fflush(stdout);
    ::_exit(result);
  }
  ::close(ends[1]);
  Run run{.output = readAll(ends[0])};
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  run.hasPassed = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return run;
}

// A suite stands on a line of its own and ends with a dot; its cases are indented. Behind a number sign
// stands a parameter.
std::vector<std::string> selectedCases() {
  std::vector<std::string> cases;
  std::string suite;
  std::istringstream lines(runApart([] { GTEST_FLAG_SET(list_tests, true); }).output);
  for (std::string line; std::getline(lines, line);) {
    const bool isCase = line.starts_with("  ");
    const std::string name = line.substr(isCase ? 2 : 0, line.find("  #", 2) - (isCase ? 2 : 0));
    if (isCase) {
      cases.push_back(suite + name);
    } else if (name.ends_with('.')) {
      suite = name;
    }
  }
  return cases;
}

int runEachAlone(const std::vector<std::string>& cases) {
  std::vector<std::string> failed;
  for (const std::string& name : cases) {
    const Run run = runApart([&] { GTEST_FLAG_SET(filter, name); });
    if (run.hasPassed) continue;
    std::fputs(run.output.c_str(), stdout);
    failed.push_back(name);
  }
  std::printf("[==========] %zu tests ran, each in a process of its own.\n", cases.size());
  for (const std::string& name : failed) std::printf("[  FAILED  ] %s\n", name.c_str());
  std::printf("[  PASSED  ] %zu tests.\n", cases.size() - failed.size());
  return failed.empty() ? 0 : kHasFailures;
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const bool selectsOne = GTEST_FLAG_GET(filter).find_first_of("*?:-") == std::string::npos;
  if (selectsOne || GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  const std::vector<std::string> cases = selectedCases();
  return cases.size() == 1 ? RUN_ALL_TESTS() : runEachAlone(cases);
}
