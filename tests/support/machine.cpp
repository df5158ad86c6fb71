#include "machine.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace karno::test {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kCommandLimit{60};
constexpr std::chrono::milliseconds kPollInterval{50};

std::string contentsOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

fs::path makeTemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "karno-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category(), pattern);
  return fs::canonical(pattern);
}

// "2024-03-05 14:07:09:042+0100 (4242) [INFO] Text" becomes "INFO Text".
std::string messageOf(const std::string& line) {
  static const std::regex kLogLine(
      R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}:\d{3}[+-]\d{4} \(\d+\) \[([^\]]+)\] (.*))");
  static const std::regex kProcess(R"(\((pid: )?\d+\))");
  static const std::regex kElapsed(R"(\(\d+\.\d seconds\))");
  std::smatch parts;
  if (!std::regex_match(line, parts, kLogLine)) return line;
  const std::string message = std::regex_replace(parts[2].str(), kProcess, "($1N)");
  return parts[1].str() + " " + std::regex_replace(message, kElapsed, "(S seconds)");
}

}  // namespace

Machine::Machine(MachineTools tools, std::vector<std::string> options)
    : tools_(std::move(tools)), folder_(makeTemporaryFolder()), root_(folder_ / "machine") {
  options.insert(options.begin(), {"--bundle", tools_.bundle});
  const CommandResult made = make(options);
  if (made.status != 0) throw std::runtime_error("make-machine failed: " + made.output);
}

Machine::~Machine() {
  launcher_.reset();
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

CommandResult Machine::make(const std::vector<std::string>& options) const {
  std::vector<std::string> command{tools_.commands / "make-machine", root_};
  command.insert(command.end(), options.begin(), options.end());
  return runCommand(command, kCommandLimit);
}

void Machine::useFeed(const std::string& url) const {
  std::ofstream(home() / "KARNOUPGRADE.debug", std::ios::binary) << url << '\n';
}

void Machine::start(const std::vector<std::string>& options) {
  std::vector<std::string> command{tools_.commands / "start", root_};
  command.insert(command.end(), options.begin(), options.end());
  launcher_ = std::make_unique<Subprocess>(command, consoleFile());
}

std::optional<int> Machine::waitForEnd(std::chrono::seconds limit) { return launcher_->waitForEnd(limit); }

CommandResult Machine::in(const std::vector<std::string>& command, std::chrono::seconds limit) const {
  std::vector<std::string> words{tools_.commands / "in", root_};
  words.insert(words.end(), command.begin(), command.end());
  return runCommand(words, limit);
}

std::string Machine::consoleText() const { return contentsOf(consoleFile()); }

std::vector<std::string> Machine::messages(const fs::path& file) {
  std::istringstream lines(contentsOf(file));
  std::vector<std::string> result;
  for (std::string line; std::getline(lines, line);) result.push_back(messageOf(line));
  return result;
}

bool Machine::waitUntil(const std::function<bool()>& condition, std::chrono::seconds limit) const {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kPollInterval);
  }
  return true;
}

std::vector<std::vector<std::string>> Machine::logsByProcess() const {
  static const std::regex kProcess(R"(^\S+ \S+ \((\d+)\) )");
  std::vector<std::string> processes;
  std::vector<std::vector<std::string>> logs;
  std::istringstream lines(contentsOf(logFile()));
  for (std::string line; std::getline(lines, line);) {
    std::smatch parts;
    const std::string process = std::regex_search(line, parts, kProcess) ? parts[1].str() : "";
    const auto place = std::find(processes.begin(), processes.end(), process);
    const auto index = static_cast<std::size_t>(place - processes.begin());
    if (place == processes.end()) {
      processes.push_back(process);
      logs.emplace_back();
    }
    logs[index].push_back(messageOf(line));
  }
  return logs;
}

bool Machine::waitForMessages(std::ptrdiff_t count, const std::string& message,
                              std::chrono::seconds limit) const {
  return waitUntil(
      [&] {
        const auto seen = console();
        return std::count(seen.begin(), seen.end(), message) >= count;
      },
      limit);
}

std::vector<int> Machine::processes() const {
  const std::string mark = "KARNO_MACHINE_ROOT=" + root_.string() + '\0';
  std::vector<int> found;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/proc", ignored)) {
    const std::string name = entry.path().filename();
    if (!std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; })) continue;
    if (contentsOf(entry.path() / "environ").find(mark) != std::string::npos)
      found.push_back(std::stoi(name));
  }
  return found;
}

std::vector<int> Machine::processesOf(const fs::path& executable) const {
  std::vector<int> found;
  for (const int process : processes()) {
    std::error_code ignored;
    const fs::path link = fs::read_symlink("/proc/" + std::to_string(process) + "/exe", ignored);
    if (link == fs::weakly_canonical(executable)) found.push_back(process);
  }
  return found;
}

std::vector<std::string> commandLineOf(int processIdentifier) {
  std::istringstream text(contentsOf("/proc/" + std::to_string(processIdentifier) + "/cmdline"));
  std::vector<std::string> words;
  for (std::string word; std::getline(text, word, '\0');) words.push_back(word);
  return words;
}

}  // namespace karno::test
