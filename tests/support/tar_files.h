#pragma once
#include <map>
#include <stdexcept>
#include <string>

namespace karno::test {

// The files of a tar archive, by their whole names. Throws std::runtime_error where a header does not add up.
inline std::map<std::string, std::string> filesOfTar(const std::string& archive) {
  constexpr std::size_t kBlock = 512;
  const auto field = [](const std::string& header, std::size_t place, std::size_t size) {
    return header.substr(place, size).substr(0, header.substr(place, size).find('\0'));
  };
  std::map<std::string, std::string> files;
  for (std::size_t at = 0; at < archive.size() && archive[at] != '\0';) {
    const std::string header = archive.substr(at, kBlock);
    unsigned sum = 0;
    for (std::size_t byte = 0; byte < kBlock; ++byte)
      sum += byte >= 148 && byte < 156 ? ' ' : static_cast<unsigned char>(header.at(byte));
    if (std::stoul(field(header, 148, 8), nullptr, 8) != sum)
      throw std::runtime_error("the checksum is wrong");
    const std::size_t size = std::stoul(field(header, 124, 12), nullptr, 8);
    files[field(header, 345, 155) + "/" + field(header, 0, 100)] = archive.substr(at + kBlock, size);
    at += kBlock + (size + kBlock - 1) / kBlock * kBlock;
  }
  return files;
}

}  // namespace karno::test
