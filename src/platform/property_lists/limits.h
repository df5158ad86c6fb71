#pragma once
#include <cstddef>

// What we accept of a property list; the ones that the launcher reads are a few KiB.
namespace karno::platform::lists {

inline constexpr std::size_t kPropertyListSizeBytesMax = std::size_t{16} * 1024 * 1024;

// How deep containers may lie in one another; the outermost one counts as 1.
inline constexpr int kMaxValueDepth = 64;

// Binary lists and archives can refer to one object many times, which unfolds to many copies of it.
class UnfoldingBudget {
 public:
  // One more object with so many bytes of content. False once there are more than a million objects or 64
  // MiB.
  bool spend(std::size_t contentBytes) {
    ++objects_;
    bytes_ += contentBytes;
    return objects_ <= kObjectsMax && bytes_ <= kBytesMax;
  }

 private:
  static constexpr std::size_t kObjectsMax = 1'000'000;
  static constexpr std::size_t kBytesMax = std::size_t{64} * 1024 * 1024;

  std::size_t objects_ = 0;
  std::size_t bytes_ = 0;
};

}  // namespace karno::platform::lists
