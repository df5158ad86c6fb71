#include "platform/posix/processes/stream_pieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "elements_are.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;

// A signal that interrupts the system call of the thread that it is sent to.
class InterruptingSignal {
 public:
  InterruptingSignal() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGUSR2, &action, &previous_);
  }
  InterruptingSignal(const InterruptingSignal&) = delete;
  InterruptingSignal& operator=(const InterruptingSignal&) = delete;
  ~InterruptingSignal() { ::sigaction(SIGUSR2, &previous_, nullptr); }

 private:
  struct sigaction previous_ = {};
};

class StreamPieces : public testing::Test {
 protected:
  StreamPieces() {
    std::array<int, 2> ends = {};
    EXPECT_EQ(::pipe(ends.data()), 0);
    stream_.reset(::fdopen(ends[0], "r"));
    writer_ = ends[1];
  }

  void write(std::string_view bytes) const {
    EXPECT_EQ(::write(writer_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  std::vector<std::string> pieces() {
    std::vector<std::string> all;
    while (auto piece = readPiece(stream_.get())) all.push_back(std::move(*piece));
    return all;
  }

  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };
  std::unique_ptr<std::FILE, Close> stream_;
  int writer_ = -1;
};

TEST_F(StreamPieces, LoseNothingToASignalInTheMiddleOfALine) {
  const InterruptingSignal signal;
  const pthread_t reader = ::pthread_self();

  std::jthread other([this, reader] {
    write("arm");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ::pthread_kill(reader, SIGUSR2);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    write("64\n");
    ::close(writer_);
  });

  EXPECT_THAT(pieces(), ElementsAre("arm64\n"));
}

TEST_F(StreamPieces, HaveWhatStandsBeforeTheEndWithoutANewline) {
  write("one\ntwo");
  ::close(writer_);

  EXPECT_THAT(pieces(), ElementsAre("one\n", "two"));
}

}  // namespace
}  // namespace karno::platform
