#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace karno::platform::test {

// Puts a binary property list together, sound or damaged. Objects are given as their bytes; references and
// offsets take two bytes each.
class BinaryListBuilder {
 public:
  // The trailer, which is written as it stands here.
  std::uint8_t offsetBytes = 2;
  std::uint8_t referenceBytes = 2;
  std::uint64_t rootIndex = 0;

  BinaryListBuilder& object(std::string bytes) {
    objects_.push_back(std::move(bytes));
    return *this;
  }

  // An array of references; also a dictionary's keys and values, when the marker says so.
  BinaryListBuilder& references(char marker, const std::vector<int>& targets) {
    std::string bytes(1, marker);
    for (const int target : targets) {
      append(bytes, static_cast<std::uint64_t>(target), 2);
    }
    return object(bytes);
  }

  std::string build() const { return buildWith(objects_.size(), {}); }

  // With another number of objects than there are, and another place for their offsets.
  std::string buildWith(std::uint64_t objectCount, std::vector<std::uint64_t> offsetTableAt) const {
    std::string bytes = "bplist00";
    std::vector<std::uint64_t> offsets;
    for (const std::string& each : objects_) {
      offsets.push_back(bytes.size());
      bytes += each;
    }
    const std::uint64_t table = bytes.size();
    for (const std::uint64_t offset : offsets) {
      append(bytes, offset, 2);
    }
    bytes += std::string(6, '\0');
    append(bytes, offsetBytes, 1);
    append(bytes, referenceBytes, 1);
    append(bytes, objectCount, 8);
    append(bytes, rootIndex, 8);
    append(bytes, offsetTableAt.empty() ? table : offsetTableAt.front(), 8);
    return bytes;
  }

 private:
  static void append(std::string& bytes, std::uint64_t number, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
      bytes.push_back(static_cast<char>(number >> shift & 0xFF));
    }
  }

  std::vector<std::string> objects_;
};

}  // namespace karno::platform::test
