#include "installer/interruption.h"

#include <signal.h>

#include <atomic>

namespace karno::installer {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

void note(int) { interrupted.store(true, std::memory_order_relaxed); }

void handle(int number, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  ::sigaction(number, &action, nullptr);
}

}  // namespace

void noteInterruptions() {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) handle(number, note);
  for (const int number : {SIGPIPE, SIGXFSZ}) handle(number, SIG_IGN);
}

bool wasInterrupted() { return interrupted.load(std::memory_order_relaxed); }

}  // namespace karno::installer
