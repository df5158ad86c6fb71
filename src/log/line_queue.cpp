#include "log/line_queue.h"

#include <algorithm>
#include <cstring>

namespace karno {

void LineQueue::push(std::string_view line) {
  const std::size_t length = line.size();
  std::string& block = blockFor(sizeof length + length);
  block.append(reinterpret_cast<const char*>(&length), sizeof length).append(line);
  ++size_;
}

// A record is never divided; one that is longer than a block has one of its own.
std::string& LineQueue::blockFor(std::size_t bytes) {
  if (!blocks_.empty() && blocks_.back().capacity() - blocks_.back().size() >= bytes) return blocks_.back();
  blocks_.emplace_back().reserve(std::max(kBlockBytes, bytes));
  return blocks_.back();
}

bool LineQueue::pop(std::string& line) {
  if (size_ == 0) return false;
  if (readAt_ == blocks_.front().size()) leaveFrontBlock();
  const std::string& block = blocks_.front();
  std::size_t length = 0;
  std::memcpy(&length, block.data() + readAt_, sizeof length);
  line.assign(block, readAt_ + sizeof length, length);
  readAt_ += sizeof length + length;
  --size_;
  if (size_ == 0) leaveFrontBlock();
  return true;
}

// The last one goes, too: the heap ends with it after a burst, and could not become smaller.
void LineQueue::leaveFrontBlock() {
  readAt_ = 0;
  blocks_.pop_front();
}

}  // namespace karno
