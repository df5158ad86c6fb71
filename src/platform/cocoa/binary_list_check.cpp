#include "platform/cocoa/binary_list_check.h"

#include <cstdint>
#include <stdexcept>

#include "platform/cocoa/property_list_error.h"
#include "platform/cocoa/property_list_limits.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::cocoa {
namespace {

constexpr std::size_t kTrailerBytes = 32;

// Kinds of object, the upper half of the marker byte.
enum Kind : unsigned {
  kSingleton = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAsciiText = 0x5,
  kUTF16Text = 0x6,
  kReference = 0x8,
  kArray = 0xA,
  kDictionary = 0xD,
};

struct ListDamage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

void require(bool condition, const char* otherwise) {
  if (!condition) {
    throw ListDamage(otherwise);
  }
}

struct Trailer {
  std::size_t offsetBytes = 0;
  std::size_t referenceBytes = 0;
  std::uint64_t objectCount = 0;
  std::uint64_t rootIndex = 0;
  std::uint64_t offsetTable = 0;
};

// One object's marker and where its contents begin.
struct Header {
  unsigned kind = 0;
  unsigned low = 0;
  std::uint64_t count = 0;  // elements, bytes or UTF-16 units; 0 for what is not counted
  std::uint64_t contents = 0;
};

class BinaryList {
 public:
  BinaryList(std::string_view bytes, ArchiveReferences references)
      : bytes_(bytes), references_(references), trailer_(readTrailer()) {}

  void check() { checkObject(trailer_.rootIndex, 1); }

 private:
  // Big-endian; the caller has checked that the bytes are there.
  std::uint64_t number(std::uint64_t offset, std::size_t size) const {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < size; ++index) {
      value = (value << 8) | byte(offset + index);
    }
    return value;
  }

  unsigned byte(std::uint64_t offset) const { return static_cast<unsigned char>(bytes_[offset]); }

  Trailer readTrailer() const {
    require(bytes_.size() >= kBinaryListMagic.size() + kTrailerBytes, "it is too short");
    const std::uint64_t begin = bytes_.size() - kTrailerBytes;
    const Trailer trailer{.offsetBytes = byte(begin + 6),
                          .referenceBytes = byte(begin + 7),
                          .objectCount = number(begin + 8, 8),
                          .rootIndex = number(begin + 16, 8),
                          .offsetTable = number(begin + 24, 8)};
    // Wider ones are for lists beyond 4 GiB.
    const auto isWidth = [](std::size_t width) { return width >= 1 && width <= 4; };
    require(isWidth(trailer.offsetBytes) && isWidth(trailer.referenceBytes), "its trailer names odd widths");
    require(trailer.offsetTable > kBinaryListMagic.size() && trailer.offsetTable < begin,
            "its offset table lies outside");
    require(
        trailer.objectCount > 0 && trailer.objectCount <= (begin - trailer.offsetTable) / trailer.offsetBytes,
        "its offset table is too short");
    require(trailer.rootIndex < trailer.objectCount, "its root object lies outside");
    return trailer;
  }

  // `count` units of `size` bytes from `offset` on lie between the magic and the offset table.
  void requireInside(std::uint64_t offset, std::uint64_t count, std::uint64_t size) const {
    const std::uint64_t end = trailer_.offsetTable;
    require(offset >= kBinaryListMagic.size() && offset <= end && count <= (end - offset) / size,
            "an object lies outside");
  }

  Header headerOf(std::uint64_t objectIndex) const {
    require(objectIndex < trailer_.objectCount, "a reference points to no object");
    const std::uint64_t offset =
        number(trailer_.offsetTable + objectIndex * trailer_.offsetBytes, trailer_.offsetBytes);
    requireInside(offset, 1, 1);
    Header header{.kind = byte(offset) >> 4, .low = byte(offset) & 0xF, .count = 0, .contents = offset + 1};
    const bool isCounted = header.kind == kData || header.kind == kAsciiText || header.kind == kUTF16Text ||
                           header.kind == kArray || header.kind == kDictionary;
    if (isCounted) {
      header.count = header.low;
      if (header.low == 0xF) {
        readLongCount(header);
      }
    }
    return header;
  }

  // A count of 15 and more is an integer object of its own behind the marker.
  void readLongCount(Header& header) const {
    requireInside(header.contents, 1, 1);
    const unsigned marker = byte(header.contents);
    require((marker >> 4) == kInteger && (marker & 0xF) <= 3, "a count is damaged");
    const std::size_t width = std::size_t{1} << (marker & 0xF);
    requireInside(header.contents + 1, 1, width);
    header.count = number(header.contents + 1, width);
    header.contents += 1 + width;
  }

  void checkObject(std::uint64_t objectIndex, int depth) {
    const Header header = headerOf(objectIndex);
    requireInside(header.contents, header.count, 1);
    require(budget_.spend(header.count), "it unfolds to too much");
    switch (header.kind) {
      case kArray:
        checkElements(header, header.count, depth);
        return;
      case kDictionary:
        checkElements(header, 2 * header.count, depth);
        checkKeys(header);
        return;
      default:
        checkLeaf(header);
    }
  }

  std::uint64_t referenceAt(const Header& header, std::uint64_t position) const {
    return number(header.contents + position * trailer_.referenceBytes, trailer_.referenceBytes);
  }

  void checkElements(const Header& header, std::uint64_t count, int depth) {
    require(depth <= kMaxValueDepth, "it is nested too deeply");
    requireInside(header.contents, count, trailer_.referenceBytes);
    for (std::uint64_t position = 0; position < count; ++position) {
      checkObject(referenceAt(header, position), depth + 1);
    }
  }

  void checkKeys(const Header& header) const {
    for (std::uint64_t position = 0; position < header.count; ++position) {
      const unsigned kind = headerOf(referenceAt(header, position)).kind;
      require(kind == kAsciiText || kind == kUTF16Text, "a key is no text");
    }
  }

  void checkLeaf(const Header& header) const {
    switch (header.kind) {
      case kSingleton:
        require(header.low == 8 || header.low == 9, "it holds an object of an unknown kind");
        return;
      case kInteger:
        require(header.low <= 4, "an integer is too wide");
        requireInside(header.contents, 1, std::uint64_t{1} << header.low);
        return;
      case kReal:
        require(header.low == 2 || header.low == 3, "a number has an odd width");
        requireInside(header.contents, 1, std::uint64_t{1} << header.low);
        return;
      case kDate:
        require(header.low == 3, "a date has an odd width");
        requireInside(header.contents, 1, 8);
        return;
      case kData:
        requireInside(header.contents, header.count, 1);
        return;
      case kAsciiText:
        checkAscii(header);
        return;
      case kUTF16Text:
        requireInside(header.contents, header.count, 2);
        return;
      case kReference:
        require(references_ == ArchiveReferences::Allowed, "it holds an archive's reference");
        require(header.low <= 3, "a reference is too wide");
        requireInside(header.contents, 1, header.low + 1);
        return;
      default:
        throw ListDamage("it holds an object of an unknown kind");
    }
  }

  void checkAscii(const Header& header) const {
    requireInside(header.contents, header.count, 1);
    for (const char character : bytes_.substr(header.contents, header.count)) {
      require((static_cast<unsigned char>(character) & 0x80) == 0, "an ASCII text is none");
    }
  }

  std::string_view bytes_;
  ArchiveReferences references_;
  Trailer trailer_;
  UnfoldingBudget budget_;
};

}  // namespace

std::optional<Error> checkBinaryList(std::string_view bytes, ArchiveReferences references) {
  try {
    BinaryList(bytes, references).check();
    return std::nullopt;
  } catch (const ListDamage& damage) {
    return unreadablePropertyList(damage.what());
  }
}

}  // namespace karno::platform::cocoa
