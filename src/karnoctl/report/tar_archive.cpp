#include "karnoctl/report/report_content.h"

#include <fmt/format.h>

#include <algorithm>
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

std::string headerOf(const ReportFile& file, std::string_view folder, platform::Date date) {
  const std::string_view name = file.name;
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  std::string header(kBlockBytes, '\0');
  put(header, 0, name.substr(name.size() - std::min(name.size(), kNameBytesMax)));
  put(header, 100, "0000600");
  put(header, 108, "0000000");  // neither user nor group
  put(header, 116, "0000000");
  put(header, 124, fmt::format("{:011o}", file.content.size()));
  put(header, 136, fmt::format("{:011o}", seconds));
  put(header, kChecksumPlace, "        ");
  put(header, 156, "0");  // a regular file
  put(header, 257, "ustar");
  put(header, 263, "00");
  put(header, 345, folder);
  const unsigned sum = std::accumulate(header.begin(), header.end(), 0U, [](unsigned total, char byte) {
    return total + static_cast<unsigned char>(byte);
  });
  put(header, kChecksumPlace, fmt::format("{:06o}", sum) + '\0');
  return header;
}

}  // namespace

std::string tarArchive(std::string_view folder, const std::vector<ReportFile>& files, platform::Date date) {
  std::string bytes;
  for (const ReportFile& file : files) {
    bytes.append(headerOf(file, folder, date)).append(file.content);
    bytes.append((kBlockBytes - file.content.size() % kBlockBytes) % kBlockBytes, '\0');
  }
  return bytes + std::string(2 * kBlockBytes, '\0');
}

}  // namespace karno::karnoctl
