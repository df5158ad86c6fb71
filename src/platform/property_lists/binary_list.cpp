#include "platform/property_lists/binary_list.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "platform/property_lists/errors.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/scalar_texts.h"
#include "platform/text/utf8.h"

namespace karno::platform::lists {
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

void require(bool condition, const char* otherwise) {
  if (!condition) {
    throw Damage(otherwise);
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

class BinaryReader {
 public:
  BinaryReader(std::string_view bytes, ArchiveReferences references)
      : bytes_(bytes), references_(references), trailer_(readTrailer()) {}

  Value read() { return object(trailer_.rootIndex, 1); }

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

  Value object(std::uint64_t objectIndex, int depth) {
    const Header header = headerOf(objectIndex);
    requireInside(header.contents, header.count, 1);
    require(budget_.spend(header.count), "it unfolds to too much");
    switch (header.kind) {
      case kArray:
        return Value(elements(header, header.count, depth));
      case kDictionary:
        return dictionary(header, depth);
      default:
        return leaf(header);
    }
  }

  Value::Array elements(const Header& header, std::uint64_t count, int depth) {
    require(depth <= kMaxValueDepth, "it is nested too deeply");
    const std::size_t width = trailer_.referenceBytes;
    requireInside(header.contents, count, width);
    Value::Array values;
    for (std::uint64_t position = 0; position < count; ++position) {
      values.push_back(object(number(header.contents + position * width, width), depth + 1));
    }
    return values;
  }

  // The keys come first, then as many values.
  Value dictionary(const Header& header, int depth) {
    Value::Array entries = elements(header, 2 * header.count, depth);
    Value::Dictionary dictionary;
    for (std::size_t position = 0; position < header.count; ++position) {
      const auto* const key = entries[position].get<std::string>();
      require(key != nullptr, "a key is no text");
      dictionary.insert_or_assign(*key, std::move(entries[header.count + position]));
    }
    return Value(std::move(dictionary));
  }

  Value leaf(const Header& header) const {
    switch (header.kind) {
      case kSingleton:
        require(header.low == 8 || header.low == 9, "it holds an object of an unknown kind");
        return Value(header.low == 9);
      case kInteger:
        return integer(header);
      case kReal:
        require(header.low == 2 || header.low == 3, "a number has an odd width");
        return Value(header.low == 2
                         ? double{std::bit_cast<float>(static_cast<std::uint32_t>(scalar(header, 4)))}
                         : std::bit_cast<double>(scalar(header, 8)));
      case kDate:
        return date(header);
      case kData:
        return data(header);
      case kAsciiText:
        return asciiText(header);
      case kUTF16Text:
        return utf16Text(header);
      case kReference:
        require(references_ == ArchiveReferences::Allowed, "it holds an archive's reference");
        require(header.low <= 3, "a reference is too wide");
        return Value(Value::Dictionary{
            {std::string(kReferenceKey), static_cast<std::int64_t>(scalar(header, header.low + 1))}});
      default:
        throw Damage("it holds an object of an unknown kind");
    }
  }

  std::uint64_t scalar(const Header& header, std::size_t width) const {
    requireInside(header.contents, 1, width);
    return number(header.contents, width);
  }

  // Those of 8 bytes have a sign, narrower ones have none; of 16 bytes the upper half may only widen the
  // lower.
  Value integer(const Header& header) const {
    require(header.low <= 4, "an integer is too wide");
    if (header.low < 4) {
      return Value(static_cast<std::int64_t>(scalar(header, std::size_t{1} << header.low)));
    }
    requireInside(header.contents, 1, 16);
    const std::uint64_t upper = number(header.contents, 8);
    const std::uint64_t lower = number(header.contents + 8, 8);
    const bool fitsSigned = upper == (lower >> 63 == 0 ? 0 : ~std::uint64_t{0});
    require(fitsSigned || upper == 0, "an integer is too wide");
    return fitsSigned ? Value(static_cast<std::int64_t>(lower)) : Value(static_cast<double>(lower));
  }

  Value date(const Header& header) const {
    require(header.low == 3, "a date has an odd width");
    const auto moment = dateSince1970(std::bit_cast<double>(scalar(header, 8)) + kReferenceDateSeconds);
    require(moment.has_value(), "it holds what no property list has");
    return Value(*moment);
  }

  std::string_view content(const Header& header) const {
    return bytes_.substr(header.contents, header.count);
  }

  Value data(const Header& header) const {
    Value::Data data(header.count);
    std::ranges::transform(content(header), data.begin(), [](char byte) { return std::byte(byte); });
    return Value(std::move(data));
  }

  Value asciiText(const Header& header) const {
    const bool isAscii = std::ranges::none_of(content(header), [](char byte) { return (byte & 0x80) != 0; });
    require(isAscii, "an ASCII text is none");
    return Value(std::string(content(header)));
  }

  Value utf16Text(const Header& header) const {
    requireInside(header.contents, header.count, 2);
    std::u16string units;
    for (std::uint64_t unit = 0; unit < header.count; ++unit) {
      units.push_back(static_cast<char16_t>(number(header.contents + 2 * unit, 2)));
    }
    return Value(utf8OfUTF16(units));
  }

  std::string_view bytes_;
  ArchiveReferences references_;
  Trailer trailer_;
  UnfoldingBudget budget_;
};

}  // namespace

Result<Value> readBinaryList(std::string_view bytes, ArchiveReferences references) {
  try {
    return BinaryReader(bytes, references).read();
  } catch (const Damage& damage) {
    return unreadablePropertyList(damage.what());
  }
}

}  // namespace karno::platform::lists
