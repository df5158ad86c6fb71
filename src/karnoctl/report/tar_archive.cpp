#include "karnoctl/report/tar_archive.h"

#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <numeric>

namespace karno::karnoctl {
namespace {

constexpr std::size_t kBlockBytes = 512;
constexpr std::size_t kNameBytesMax = 100;
constexpr std::size_t kChecksumPlace = 148;

void put(std::string& block, std::size_t place, std::string_view text) {
  block.replace(place, text.size(), text);
}

}  // namespace

TarArchive::TarArchive(std::string_view folder, platform::Date date)
    : folder_(folder), seconds_(std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count()) {}

void TarArchive::add(std::string_view name, std::string_view content) {
  if (name.size() > kNameBytesMax) name.remove_prefix(name.size() - kNameBytesMax);
  std::string header(kBlockBytes, '\0');
  put(header, 0, name);
  put(header, 100, "0000600");
  put(header, 108, "0000000");  // neither user nor group
  put(header, 116, "0000000");
  put(header, 124, fmt::format("{:011o}", content.size()));
  put(header, 136, fmt::format("{:011o}", seconds_));
  put(header, kChecksumPlace, "        ");
  put(header, 156, "0");  // a regular file
  put(header, 257,
      std::string_view("ustar\0"
                       "00",
                       8));
  put(header, 345, folder_);
  const unsigned sum = std::accumulate(header.begin(), header.end(), 0U, [](unsigned total, char byte) {
    return total + static_cast<unsigned char>(byte);
  });
  put(header, kChecksumPlace, fmt::format("{:06o}", sum));
  header[kChecksumPlace + 6] = '\0';
  bytes_.append(header).append(content);
  bytes_.append((kBlockBytes - content.size() % kBlockBytes) % kBlockBytes, '\0');
}

std::string TarArchive::bytes() const { return bytes_ + std::string(2 * kBlockBytes, '\0'); }

}  // namespace karno::karnoctl
