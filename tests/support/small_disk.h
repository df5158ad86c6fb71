#pragma once
#include <cstdint>
#include <filesystem>
#include <string>

namespace karno::test {

// A disk of its own over a folder: what lay in the folder lies on it, and beyond that it has room for so many
// bytes, in whole pages of memory. Only this process and those that it starts from now on see it; it goes
// with this object. Mounting takes a right that is not given everywhere, and this process must have no other
// thread.
class SmallDisk {
 public:
  SmallDisk(std::filesystem::path folder, std::uintmax_t roomBytes);
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk();

  // Begins every hindrance.
  static constexpr const char* kNoRight = "no right to mount a disk here: ";

  // Why there is no disk; empty when there is one.
  const std::string& hindrance() const { return hindrance_; }

 private:
  const std::filesystem::path folder_;
  std::string hindrance_;
};

}  // namespace karno::test
