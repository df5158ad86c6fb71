#include "platform/linux/dispatch/threads.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <condition_variable>
#include <future>
#include <list>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/never_destroyed.h"
#include "platform/posix/processes/thread_start.h"

namespace karno::platform {
namespace {

constexpr int kLoweredNiceValue = 10;
constexpr std::size_t kThreadNameBytesMax = 15;

thread_local bool isLowered = false;

void startDirectly(std::function<void()> body) { std::thread(std::move(body)).detach(); }

// A thread of normal priority that starts others. It sleeps until it is asked.
class ThreadStarter {
 public:
  static ThreadStarter& instance() {
    static NeverDestroyed<ThreadStarter> starter;
    return starter.get();
  }

  ThreadStarter() {
    startDirectly([this] {
      nameThisThread("ThreadStarter");
      serve();
    });
  }

  // Waits until the thread runs. Throws what its start threw.
  void start(std::function<void()> body) {
    std::packaged_task<void()> request([&body] { startDirectly(std::move(body)); });
    std::future<void> started = request.get_future();
    {
      const std::scoped_lock lock(mutex_);
      requests_.push_back(std::move(request));
    }
    asked_.notify_one();
    started.get();
  }

 private:
  void serve() {
    std::unique_lock lock(mutex_);
    while (true) {
      asked_.wait(lock, [this] { return !requests_.empty(); });
      std::list<std::packaged_task<void()>> request;  // each asker waits for its own, so there are few
      request.splice(request.begin(), requests_, requests_.begin());
      lock.unlock();
      request.front()();
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable asked_;
  std::list<std::packaged_task<void()>> requests_;
};

}  // namespace

void lowerPriorityOfThisThread() {
  if (isLowered) return;
  ThreadStarter::instance();  // while this thread can still start one of normal priority
  isLowered = true;
  // On Linux the nice value belongs to the thread. A refusal leaves it as it is, which harms nobody.
  ::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), kLoweredNiceValue);
}

void startThread(std::function<void()> body) {
  if (isLowered) {
    ThreadStarter::instance().start(std::move(body));
  } else {
    startDirectly(std::move(body));
  }
}

void nameThisThread(const std::string& name) {
  ::pthread_setname_np(::pthread_self(), name.substr(0, kThreadNameBytesMax).c_str());
}

void startThreadOfNormalPriority(std::function<void()> body) { startThread(std::move(body)); }

}  // namespace karno::platform
