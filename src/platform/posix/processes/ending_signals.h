#pragma once
#include <csignal>
#include <functional>

// The signals by which a process is told to end from outside: TERM, INT and HUP. The first of them gives the
// process a moment for its last words, the second ends it on the spot.
namespace karno::platform {

// From now on the first of them calls `end` on a thread of its own, once; a process that is still there 1.5 s
// later ends by that signal, whatever its main thread is at. The second one ends it at once, in the same way.
// A signal that the process was started to ignore stays ignored. Once per process.
void catchEndingSignals(std::function<void()> end);

// The same once more, for after a framework has put in handlers of its own.
void catchEndingSignalsAgain();

// Whether the first of them has come. Any thread.
bool hasEndingSignalCome();

// Keeps them waiting while the calling thread, which must be the process's only one that lets them through,
// has no handlers of ours.
class EndingSignalsHeld {
 public:
  EndingSignalsHeld();
  ~EndingSignalsHeld();
  EndingSignalsHeld(const EndingSignalsHeld&) = delete;
  EndingSignalsHeld& operator=(const EndingSignalsHeld&) = delete;

 private:
  sigset_t before_;
};

}  // namespace karno::platform
