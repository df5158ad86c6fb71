#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace karno::test {

inline constexpr std::uint32_t kIntel = 0x01000007;  // processors as Mach-O numbers them
inline constexpr std::uint32_t kAppleSilicon = 0x0100000c;
inline constexpr std::uint16_t kELFIntel = 62;  // and as ELF does
inline constexpr std::uint16_t kELFArm = 183;

// Numbers one behind the other, in one byte order.
class Numbers {
 public:
  explicit Numbers(bool isBigEndian) : isBigEndian_(isBigEndian) {}

  Numbers& u16(std::uint64_t value) { return add(value, 2); }
  Numbers& u32(std::uint64_t value) { return add(value, 4); }
  Numbers& u64(std::uint64_t value) { return add(value, 8); }
  Numbers& bytes(const std::string& bytes) {
    text_ += bytes;
    return *this;
  }
  const std::string& text() const { return text_; }

 private:
  Numbers& add(std::uint64_t value, std::size_t size) {
    for (std::size_t index = 0; index < size; ++index) {
      const std::size_t shift = 8 * (isBigEndian_ ? size - 1 - index : index);
      text_ += static_cast<char>(value >> shift & 0xff);
    }
    return *this;
  }

  bool isBigEndian_;
  std::string text_;
};

// What a Mach-O program for one processor says of itself. No code follows its headers.
struct MachO {
  std::uint32_t processor = kIntel;
  bool isSigned = true;
  bool isBigEndian = false;
  std::uint32_t magic = 0xfeedfacf;
  std::uint32_t kind = 2;  // an executable
  std::uint32_t commandCount = 2;
  std::uint32_t commandBytes = 88;
  std::uint32_t segmentCommandBytes = 72;
  std::uint64_t segmentBytes = 120;
  std::uint32_t signatureBytes = 8;

  std::string bytes() const {
    Numbers file(isBigEndian);
    file.u32(magic).u32(processor).u32(0).u32(kind).u32(commandCount).u32(commandBytes).u32(0).u32(0);
    file.u32(0x19).u32(segmentCommandBytes).bytes(std::string(16, 'n'));  // a segment and its name
    file.u64(0).u64(segmentBytes).u64(0).u64(segmentBytes).bytes(std::string(16, '\0'));
    file.u32(isSigned ? 0x1d : 0x1b).u32(16).u32(100).u32(signatureBytes);
    return file.text();
  }
};

// A universal program. Each slice is listed under its own processor.
inline std::string universal(const std::vector<MachO>& slices) {
  constexpr std::size_t kListBytes = 8;
  constexpr std::size_t kEntryBytes = 20;
  Numbers list(true);
  list.u32(0xcafebabe).u32(slices.size());
  std::size_t at = kListBytes + kEntryBytes * slices.size();
  std::string code;
  for (const MachO& slice : slices) {
    const std::string bytes = slice.bytes();
    list.u32(slice.processor).u32(0).u32(at + code.size()).u32(bytes.size()).u32(0);
    code += bytes;
  }
  return list.text() + code;
}

// What a program of Linux says of itself.
struct ELF {
  std::uint16_t processor = kELFIntel;
  bool isBigEndian = false;
  unsigned char width = 2;  // 64 bits
  std::uint16_t kind = 3;   // an executable that can be loaded anywhere
  std::uint64_t segmentsOffset = 64;
  std::uint16_t segmentEntryBytes = 56;
  std::uint16_t segmentCount = 1;
  std::uint64_t segmentBytes = 120;
  std::uint64_t sectionsOffset = 120;  // an empty list

  std::string bytes() const {
    Numbers file(isBigEndian);
    file.bytes(
            "\x7f"
            "ELF")
        .bytes({static_cast<char>(width), isBigEndian ? '\2' : '\1', '\1'});
    file.bytes(std::string(9, '\0'))
        .u16(kind)
        .u16(processor)
        .u32(1)
        .u64(0)
        .u64(segmentsOffset)
        .u64(sectionsOffset);
    file.u32(0).u16(64).u16(segmentEntryBytes).u16(segmentCount).u16(0).u16(0).u16(0);
    file.u32(1).u32(5).u64(0).u64(0).u64(0).u64(segmentBytes).u64(segmentBytes).u64(0);
    return file.text();
  }
};

}  // namespace karno::test
