#pragma once
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace karno {

// Lines in the order in which they came. They lie one after another in large blocks, not in an allocation
// each, so that the system gets back what a burst of them took. One thread at a time.
class LineQueue {
 public:
  void push(std::string_view line);

  // Puts the oldest line in place of the text, whose memory serves again. False, and nothing is done, when
  // there is none.
  bool pop(std::string& line);

  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t kBlockBytes = 32'000;

  std::string& blockFor(std::size_t bytes);
  void leaveFrontBlock();

  std::deque<std::string> blocks_;  // of records: how many bytes the line has, and the line
  std::size_t readAt_ = 0;          // in the front block
  std::size_t size_ = 0;
};

}  // namespace karno
