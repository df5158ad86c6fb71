#include "platform/posix/processes/ending_signals.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/posix/clock.h"
#include "platform/posix/processes/thread_start.h"
#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

constexpr std::array kEndingSignals = {SIGTERM, SIGINT, SIGHUP};
constexpr double kLastWordsSecondsMax = 1.5;
constexpr int kKilledStatus = 128;  // and the signal's number, as a shell has it

// All that the handler touches.
std::atomic<int> firstSignal{0};
std::atomic<int> wakingEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

std::array<bool, kEndingSignals.size()> isCaught{};

sigset_t endingSignals() {
  sigset_t signals;
  // Macros on macOS, so not ::sigemptyset.
  sigemptyset(&signals);
  for (const int number : kEndingSignals) sigaddset(&signals, number);
  return signals;
}

// The kernel keeps the first process of a container from ending by a signal that has its default meaning.
[[noreturn]] void endBy(int number) {
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigemptyset(&action.sa_mask);
  ::sigaction(number, &action, nullptr);
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, number);
  ::pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
  ::raise(number);
  ::_exit(kKilledStatus + number);
}

void onSignal(int number) {
  const int before = errno;
  int none = 0;
  if (!firstSignal.compare_exchange_strong(none, number)) endBy(number);
  const char byte = 0;
  // The pipe is empty, so there is room.
  [[maybe_unused]] const ssize_t written = ::write(wakingEnd, &byte, 1);
  errno = before;
}

bool isIgnored(int number) {
  struct sigaction action = {};
  return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Both ends stay open until the process ends.
int openWakingPipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  wakingEnd = ends[1];
  return ends[0];
}

void waitForSignal(int sleepingEnd) {
  char byte = 0;
  retryOnInterrupt([&] { return ::read(sleepingEnd, &byte, 1); });
}

}  // namespace

void catchEndingSignals(std::function<void()> end) {
  startThreadOfNormalPriority([sleepingEnd = openWakingPipe(), end = std::move(end)] {
    const EndingSignalsHeld inOtherThreads;
    waitForSignal(sleepingEnd);
    end();
    sleepFor(kLastWordsSecondsMax);
    endBy(firstSignal);
  });
  for (std::size_t index = 0; index < kEndingSignals.size(); ++index) {
    isCaught[index] = !isIgnored(kEndingSignals[index]);
  }
  catchEndingSignalsAgain();
}

// A signal interrupts the system calls of whatever thread it hits, which go on where the kernel can do that.
void catchEndingSignalsAgain() {
  for (std::size_t index = 0; index < kEndingSignals.size(); ++index) {
    struct sigaction action = {};
    action.sa_handler = isCaught[index] ? onSignal : SIG_IGN;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(kEndingSignals[index], &action, nullptr);
  }
}

bool hasEndingSignalCome() { return firstSignal != 0; }

EndingSignalsHeld::EndingSignalsHeld() {
  const sigset_t signals = endingSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, &before_);
}

EndingSignalsHeld::~EndingSignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace karno::platform
