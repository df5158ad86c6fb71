#include "karnoctl/log/log_follower.h"

#include <utility>

#include "karnoctl/log/log_tail.h"

namespace karno::karnoctl {

std::string LogFollower::newText() {
  startedAnew_ = false;
  if (std::string text = readOn(); !text.empty()) return text;

  auto atPath = reading_.open(path_);
  if (!atPath) return {};  // renamed and not made anew yet: what comes until then goes to the renamed file
  if (file_ && atPath.value()->identity() == file_->identity()) return {};

  // Lines may have come after the look above and before the rename.
  if (std::string text = readOn(); !text.empty()) return text;

  startedAnew_ = file_ != nullptr;
  file_ = std::move(atPath.value());
  offset_ = 0;
  return readOn();
}

std::string LogFollower::readOn() {
  if (!file_) return {};
  if (file_->sizeInBytes() < offset_) {
    startedAnew_ = true;
    offset_ = 0;
  }
  auto piece = file_->read(offset_, kPieceBytes);
  if (!piece) return {};
  offset_ += piece.value().size();
  return std::move(piece.value());
}

}  // namespace karno::karnoctl
