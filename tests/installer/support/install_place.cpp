#include "support/install_place.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace karno::test {
namespace {

constexpr unsigned kSoonMicroseconds = 50'000;
constexpr int kTellToEnd = SIGUSR1;

pid_t forked() {
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process");
  return process;
}

}  // namespace

InstallPlace::InstallPlace(const std::string& staging, const BundleTexts& newTexts)
    : newBundle_(folder_ / (staging + "/Karno.app")) {
  writeItems(folder_.path(), bundleItems({.version = "1"}));
  writeItems(folder_ / staging, bundleItems(newTexts));
}

installer::InstallRequest InstallPlace::request() const {
  return {.newBundle = newBundle_, .bundle = bundle(), .after = endedProcess()};
}

std::vector<std::string> InstallPlace::command() const {
  return {KARNO_INSTALLER, "install", "--new",   newBundle_,
          "--bundle",      bundle(),  "--after", std::to_string(endedProcess())};
}

pid_t endedProcess() {
  const pid_t process = forked();
  if (process == 0) ::_exit(0);
  ::waitpid(process, nullptr, 0);
  return process;
}

WaitingChild::WaitingChild() {
  // Blocked before the child is there, so that it cannot miss the signal.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, kTellToEnd);
  sigset_t before;
  ::sigprocmask(SIG_BLOCK, &signals, &before);
  process_ = forked();
  if (process_ == 0) {
    int number = 0;
    ::sigwait(&signals, &number);
    ::usleep(kSoonMicroseconds);
    ::_exit(0);
  }
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
}

WaitingChild::~WaitingChild() {
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

// Without taking its end away from the destructor.
bool WaitingChild::isRunning() const {
  siginfo_t end = {};
  ::waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOHANG | WNOWAIT);
  return end.si_pid == 0;
}

void WaitingChild::endSoon() const { ::kill(process_, kTellToEnd); }

void endInExchange(const InstallPlace& place, const installer::Exchange& exchange) {
  const pid_t process = forked();
  if (process == 0) {
    installUpdate(place.request(), exchange);
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
}

}  // namespace karno::test
