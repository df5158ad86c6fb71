#include "fake_process_table.h"

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace karno::test {
namespace {

constexpr std::int32_t kFirstProcess = 1;  // belongs to root
constexpr double kForeverSeconds = 1e9;
constexpr double kEndSeconds = 0.01;  // from a signal to the end
constexpr std::string_view kProgramsOfBundle = "/Contents/MacOS/";
constexpr const char* kCommandFolders[] = {"/bin", "/sbin", "/usr/bin", "/usr/sbin"};

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

// The bundle of an executable in X.app/Contents/MacOS.
std::optional<std::string> bundleOf(const std::string& executable) {
  const std::size_t end = executable.rfind(kProgramsOfBundle);
  if (end == std::string::npos || folderOf(executable).size() + 1 != end + kProgramsOfBundle.size())
    return {};
  return executable.substr(0, end);
}

}  // namespace

FakeProcessTable::FakeProcessTable(FakeScheduler& scheduler, const FakeClock& clock,
                                   const FakeBundles& bundles, const FakeFiles& files)
    : scheduler_(scheduler), clock_(clock), bundles_(bundles), files_(files) {
  add(kLauncher, {.parent = kFirstProcess});
}

void FakeProcessTable::addApplication(const std::string& bundlePath) {
  add(next_++, {.parent = kFirstProcess, .executablePath = bundlePath + "/Contents/MacOS/Program"});
}

bool FakeProcessTable::hasProgram(const std::string& path) const {
  if (programs.contains(path) || std::ranges::count(kCommandFolders, folderOf(path)) > 0) return true;
  const auto bundlePath = bundleOf(path);
  const auto bundle = bundlePath ? bundles_.bundleAtPath(*bundlePath) : nullptr;
  return (bundle && bundle->executablePath() == path) || files_.content(path) != nullptr;
}

platform::Result<std::int32_t> FakeProcessTable::start(const std::string& path,
                                                       platform::Tasks::TerminationHandler onTermination) {
  if (!hasProgram(path))
    return platform::Error::posix(!path.empty() && files_.fileExists(path) ? EACCES : ENOENT);
  const std::int32_t child = next_++;
  add(child, {.executablePath = path, .startDate = clock_.now(), .onTermination = std::move(onTermination)});
  const auto program = programs.find(path);
  if (program != programs.end() && program->second.endsAtOnce) {
    scheduler_.addThread("program", [this, child, how = *program->second.endsAtOnce] { end(child, how); });
  }
  return child;
}

bool FakeProcessTable::end(std::int32_t processIdentifier, platform::TaskEnd how) {
  const auto ended = processes_.extract(processIdentifier);
  if (ended.empty()) return false;
  const Process& process = ended.mapped();
  if (process.parent != kLauncher) return true;
  untold_[processIdentifier] = process.executablePath;
  scheduler_.addThread("task termination", [=, this, tell = process.onTermination] {
    if (tell) tell(how);
    untold_.erase(processIdentifier);
  });
  return true;
}

int FakeProcessTable::terminate(std::int32_t processIdentifier) {
  if (processIdentifier == kFirstProcess) return EPERM;
  const auto found = processes_.find(processIdentifier);
  if (found == processes_.end()) return ESRCH;
  const auto program = programs.find(found->second.executablePath);
  const bool stays = program != programs.end() && program->second.ignoresTermination;
  if (stays) return 0;
  scheduler_.addThread("signal", [=, this] {
    scheduler_.sleep(kEndSeconds);
    end(processIdentifier,
        {.terminationStatus = SIGTERM, .terminationReason = platform::TerminationReason::UncaughtSignal});
  });
  return 0;
}

// Of several who wait for a child one gets it.
platform::WaitResult FakeProcessTable::waitForChild(std::int32_t processIdentifier) {
  const platform::WaitResult noChild{.result = -1, .error = ECHILD};
  const auto isRunning = [&] { return std::ranges::count(children(), processIdentifier) > 0; };
  if (!isRunning()) return noChild;
  awaited_.insert(processIdentifier);
  scheduler_.waitUntil([&] { return !isRunning(); }, kForeverSeconds);
  return awaited_.erase(processIdentifier) > 0 ? platform::WaitResult{.result = processIdentifier} : noChild;
}

std::vector<std::int32_t> FakeProcessTable::children() const {
  std::vector<std::int32_t> found;
  for (const auto& [identifier, process] : processes_) {
    if (process.parent == kLauncher) found.push_back(identifier);
  }
  return found;
}

std::vector<platform::RunningProcess> FakeProcessTable::running() const {
  std::vector<platform::RunningProcess> found;
  for (const auto& [identifier, process] : processes_) {
    const bool isLauncher = identifier == kLauncher && process.executablePath.empty();
    found.push_back({.processIdentifier = identifier,
                     .parentProcessIdentifier = process.parent,
                     .executablePath = isLauncher ? bundles_.mainBundle().executablePath().value_or("")
                                                  : process.executablePath,
                     .startDate = process.startDate});
  }
  return found;
}

std::vector<FakeProcessTable::Application> FakeProcessTable::applicationsWithUntoldEnds() const {
  std::vector<platform::RunningProcess> processes = running();
  for (const auto& [identifier, path] : untold_)
    processes.push_back({.processIdentifier = identifier, .executablePath = path, .startDate = {}});
  return fromBundles(processes);
}

std::vector<FakeProcessTable::Application> FakeProcessTable::fromBundles(
    const std::vector<platform::RunningProcess>& processes) {
  std::vector<Application> found;
  for (const auto& process : processes) {
    if (const auto bundle = bundleOf(process.executablePath))
      found.push_back({.processIdentifier = process.processIdentifier, .bundlePath = *bundle});
  }
  return found;
}

}  // namespace karno::test
