#include "started_program.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <thread>

#include "spoken_program.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

// The value of a line such as "VmRSS:     1234 kB" of a /proc status file.
std::uint64_t statusValue(const fs::path& file, const std::string& key) {
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(key + ":")) return std::stoull(line.substr(key.size() + 1));
  }
  return 0;
}

// Of the embedded applications: beside them lie programs that are no bundles.
void replaceExecutables(const fs::path& helpers, const fs::path& probe) {
  for (const fs::directory_entry& helper : fs::directory_iterator(helpers)) {
    if (helper.path().extension() != ".app") continue;
    for (const fs::directory_entry& entry : fs::directory_iterator(helper.path() / "Contents" / "MacOS")) {
      fs::copy_file(probe, entry.path(), fs::copy_options::overwrite_existing);
    }
  }
}

Programs stage() {
  const fs::path bench = fs::read_symlink("/proc/self/exe").parent_path();
  const fs::path bundle = Workplace::home() / "Applications" / "Karno.app";
  fs::create_directories(bundle.parent_path());
  fs::copy(builtBundle(), bundle, fs::copy_options::recursive);
  replaceExecutables(bundle / "Contents" / "Helpers", bench / "start_probe");
  const fs::path version =
      Workplace::home().parent_path().parent_path() / "System/Library/CoreServices/SystemVersion.plist";
  fs::create_directories(version.parent_path());
  std::ofstream(version)
      << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<plist version=\"1.0\"><dict><key>ProductVersion</key><string>14.5</string></dict></plist>\n";
  return {.launcher = bundle / "Contents" / "MacOS" / "Karno",
          .minimal = bench / "minimal_application",
          .probe = bench / "start_probe",
          .bareObserver = bench / "bare_observer",
          .bareWaiter = bench / "bare_waiter",
          .growingLog = bench / "growing_log"};
}

}  // namespace

std::uint64_t residentBytesOf(pid_t process) {
  return 1024 * statusValue("/proc/" + std::to_string(process) + "/status", "VmRSS");
}

const Programs& Programs::staged() {
  static const Programs programs = stage();
  return programs;
}

StartedProgram::StartedProgram(const std::vector<std::string>& command, bool childWaits)
    : probeFile_(Workplace::home() / "probe") {
  fs::remove(probeFile_);
  setenv("KARNO_BENCH_PROBE", probeFile_.c_str(), 1);
  childWaits ? setenv("KARNO_BENCH_WAIT", "1", 1) : unsetenv("KARNO_BENCH_WAIT");
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  startedNanoseconds_ = monotonicNanoseconds();
  if (posix_spawn(&processIdentifier_, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
    processIdentifier_ = -1;
  }
}

StartedProgram::~StartedProgram() {
  if (processIdentifier_ < 0) return;
  kill(processIdentifier_, SIGKILL);
  waitpid(processIdentifier_, nullptr, 0);
}

double StartedProgram::secondsToChild() const {
  for (int look = 0; look < 1000; ++look) {
    std::ifstream file(probeFile_);
    std::int64_t ran = 0;
    if (file >> ran && file.get() == '\n') return static_cast<double>(ran - startedNanoseconds_) / 1e9;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return -1;
}

std::uint64_t StartedProgram::wakeUps() const {
  std::uint64_t total = 0;
  for (const fs::directory_entry& task :
       fs::directory_iterator("/proc/" + std::to_string(processIdentifier_) + "/task")) {
    total += statusValue(task.path() / "status", "voluntary_ctxt_switches");
  }
  return total;
}

// Fields 14 and 15 of /proc/PID/stat, counted after the command name's closing bracket.
double StartedProgram::processorSeconds() const {
  std::ifstream file("/proc/" + std::to_string(processIdentifier_) + "/stat");
  std::string text((std::istreambuf_iterator<char>(file)), {});
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::string skipped;
  for (int i = 0; i < 11; ++i) fields >> skipped;
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  fields >> user >> system;
  return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace karno::bench
