#include "karnoctl/programs/header_bytes.h"

namespace karno::karnoctl {

HeaderBytes::HeaderBytes(const platform::ReadableFile& file, std::uint64_t offset, std::size_t sizeInBytes,
                         ByteOrder order)
    : order_(order) {
  requireWithin(offset, sizeInBytes, file.sizeInBytes());
  platform::Result<std::string> piece = file.read(offset, sizeInBytes);
  if (!piece) throw NoProgram(piece.error().localizedDescription());
  if (piece.value().size() < sizeInBytes) throw NoProgram(kCutOff);
  bytes_ = std::move(piece.value());
}

std::uint64_t HeaderBytes::number(std::size_t offset, std::size_t size) const {
  if (offset > bytes_.size() || size > bytes_.size() - offset) throw NoProgram(kDamagedHeaders);
  std::uint64_t value = 0;
  for (std::size_t index = 0; index < size; ++index) {
    const std::size_t place = order_ == ByteOrder::Big ? index : size - 1 - index;
    value = value << 8 | static_cast<unsigned char>(bytes_[offset + place]);
  }
  return value;
}

void requireWithin(std::uint64_t offset, std::uint64_t size, std::uint64_t available) {
  if (offset > available || size > available - offset) throw NoProgram(kCutOff);
}

}  // namespace karno::karnoctl
