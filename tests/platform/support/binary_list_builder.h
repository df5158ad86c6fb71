#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace karno::test {

// Puts a binary property list together, sound or damaged. Objects are given as their bytes.
class BinaryListBuilder {
 public:
  // What the trailer says; references and offsets take as many bytes.
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
      append(bytes, static_cast<std::uint64_t>(target), referenceBytes);
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
      append(bytes, offset, offsetBytes);
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
    for (int place = width - 1; place >= 0; --place) {
      bytes.push_back(place < 8 ? static_cast<char>(number >> (8 * place) & 0xFF) : '\0');
    }
  }

  std::vector<std::string> objects_;
};

// A dictionary of at most seven short ASCII texts: one byte says how long each is, and how many there are.
inline std::string binaryListOfTexts(const std::vector<std::pair<std::string, std::string>>& entries) {
  const auto textObject = [](const std::string& text) {
    return "\x5F\x10" + std::string(1, static_cast<char>(text.size())) + text;
  };
  std::vector<int> targets;
  for (std::size_t target = 1; target <= 2 * entries.size(); ++target)
    targets.push_back(static_cast<int>(target));
  BinaryListBuilder list;
  list.references(static_cast<char>(0xD0 + entries.size()), targets);
  for (const auto& [key, text] : entries) list.object(textObject(key));
  for (const auto& [key, text] : entries) list.object(textObject(text));
  return list.build();
}

}  // namespace karno::test
