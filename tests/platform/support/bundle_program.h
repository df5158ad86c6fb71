#pragma once
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "property_list_texts.h"
#include "temporary_folder.h"

namespace karno::test {

// Makes Folder/NAME.app with that identifier and answers the path of its executable, which does nothing for a
// minute.
inline std::string makeSleepingBundle(const TemporaryFolder& folder, const std::string& name,
                                      const std::string& identifier) {
  const std::string contents = name + ".app/Contents/";
  folder.write(contents + "Info.plist", propertyList(stringEntry("CFBundleIdentifier", identifier)));
  std::filesystem::create_directories(folder / (contents + "MacOS"));
  std::filesystem::copy_file("/bin/sleep", folder / (contents + "MacOS/Run"));
  return folder / (contents + "MacOS/Run");
}

// A process that runs the executable; killed, and reaped unless that was done, by the destructor.
class SleepingProcess {
 public:
  explicit SleepingProcess(const std::string& executable, std::vector<std::string> arguments = {"60"})
      : pid_(::fork()) {
    if (pid_ == 0) {
      arguments.insert(arguments.begin(), executable);
      std::vector<char*> words;
      for (std::string& argument : arguments) words.push_back(argument.data());
      words.push_back(nullptr);
      ::execv(executable.c_str(), words.data());
      ::_exit(127);
    }
    // The link still names this test's program until the other one has been loaded.
    const std::string link = "/proc/" + std::to_string(pid_) + "/exe";
    std::error_code gone;
    while (std::filesystem::read_symlink(link, gone) != executable) ::usleep(1000);
  }
  SleepingProcess(const SleepingProcess&) = delete;
  SleepingProcess& operator=(const SleepingProcess&) = delete;
  ~SleepingProcess() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }

  int identifier() const { return pid_; }

  // Ends it and leaves it unreaped.
  void becomeZombie() const {
    ::kill(pid_, SIGKILL);
    siginfo_t unused = {};
    while (::waitid(P_PID, static_cast<id_t>(pid_), &unused, WEXITED | WNOWAIT) == -1 && errno == EINTR) {
    }
  }

 private:
  pid_t pid_;
};

}  // namespace karno::test
