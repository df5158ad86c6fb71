#include "platform/linux/notifications/bus_values.h"

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/never_destroyed.h"
#include "platform/text/utf8.h"

namespace karno::platform {
namespace {

using BusArray = std::vector<sdbus::Variant>;
using BusDate = sdbus::Struct<double>;
using Bytes = std::vector<std::uint8_t>;

constexpr double kDateSecondsMax = 9.2e9;  // what 64 bits of nanoseconds hold

std::optional<sdbus::Variant> toBus(const Value& value, int depth);

std::optional<BusDictionary> dictionaryToBus(const Value::Dictionary& values, int depth) {
  if (depth > kBusValueDepthMax) return std::nullopt;
  BusDictionary result;
  for (const auto& [key, value] : values) {
    std::optional<sdbus::Variant> element = toBus(value, depth + 1);
    if (!element || !isBusText(key)) return std::nullopt;
    result.emplace(key, std::move(*element));
  }
  return result;
}

// One overload for each type that a Value can hold.
struct ToBus {
  int depth;

  using Result = std::optional<sdbus::Variant>;

  Result operator()(bool value) const { return sdbus::Variant(value); }
  Result operator()(std::int64_t value) const { return sdbus::Variant(value); }
  Result operator()(double value) const { return sdbus::Variant(value); }
  Result operator()(const std::string& value) const {
    if (!isBusText(value)) return std::nullopt;
    return sdbus::Variant(value);
  }
  Result operator()(Date value) const {
    return sdbus::Variant(BusDate(std::chrono::duration<double>(value.time_since_epoch()).count()));
  }
  Result operator()(const Value::Data& value) const {
    Bytes bytes;
    for (const std::byte byte : value) bytes.push_back(std::to_integer<std::uint8_t>(byte));
    return sdbus::Variant(bytes);
  }
  Result operator()(const Value::Array& values) const {
    if (depth > kBusValueDepthMax) return std::nullopt;
    BusArray result;
    for (const Value& value : values) {
      Result element = toBus(value, depth + 1);
      if (!element) return std::nullopt;
      result.push_back(std::move(*element));
    }
    return sdbus::Variant(result);
  }
  Result operator()(const Value::Dictionary& values) const {
    const std::optional<BusDictionary> result = dictionaryToBus(values, depth);
    if (!result) return std::nullopt;
    return sdbus::Variant(*result);
  }
};

std::optional<sdbus::Variant> toBus(const Value& value, int depth) {
  return std::visit(ToBus{depth}, value.storage());
}

std::optional<Value> fromBus(const sdbus::Variant& value, int depth);

template <class Integer>
std::enable_if_t<std::is_integral_v<Integer>, std::optional<Value>> fromBus(Integer value, int) {
  if constexpr (std::is_same_v<Integer, bool>) {
    return Value(value);
  } else {
    if (!std::in_range<std::int64_t>(value)) return std::nullopt;
    return Value(static_cast<std::int64_t>(value));
  }
}

std::optional<Value> fromBus(double value, int) { return Value(value); }

std::optional<Value> fromBus(const std::string& value, int) { return Value(value); }

std::optional<Value> fromBus(const BusDate& value, int) {
  const double seconds = value.get<0>();
  if (!(std::abs(seconds) < kDateSecondsMax)) return std::nullopt;  // nor is NaN a moment
  const std::chrono::duration<double> sinceEpoch(seconds);
  return Value(Date(std::chrono::round<std::chrono::nanoseconds>(sinceEpoch)));
}

std::optional<Value> fromBus(const Bytes& bytes, int) {
  Value::Data data;
  for (const std::uint8_t byte : bytes) data.push_back(std::byte{byte});
  return Value(std::move(data));
}

template <class Element>
std::optional<Value> fromBus(const std::map<std::string, Element>& values, int depth);

template <class Element>
std::optional<Value> fromBus(const std::vector<Element>& values, int depth) {
  if (depth > kBusValueDepthMax) return std::nullopt;
  Value::Array result;
  for (const auto& value : values) {
    const Element& element = value;
    if (std::optional<Value> converted = fromBus(element, depth + 1)) result.push_back(std::move(*converted));
  }
  return Value(std::move(result));
}

template <class Element>
std::optional<Value> fromBus(const std::map<std::string, Element>& values, int depth) {
  if (depth > kBusValueDepthMax) return std::nullopt;
  Value::Dictionary result;
  for (const auto& [key, value] : values) {
    if (std::optional<Value> converted = fromBus(value, depth + 1))
      result.emplace(key, std::move(*converted));
  }
  return Value(std::move(result));
}

using Reader = std::optional<Value> (*)(const sdbus::Variant&, int);
using Readers = std::map<std::string, Reader, std::less<>>;

template <class T>
void addReader(Readers& readers) {
  readers.emplace(sdbus::signature_of<T>::str(),
                  [](const sdbus::Variant& value, int depth) { return fromBus(value.get<T>(), depth); });
}

// A type alone, as the element of an array and as the value of a dictionary.
template <class T>
void addReaders(Readers& readers) {
  addReader<T>(readers);
  addReader<std::vector<T>>(readers);
  addReader<std::map<std::string, T>>(readers);
}

Readers makeReaders() {
  Readers readers;
  addReaders<bool>(readers);
  addReaders<std::uint8_t>(readers);
  addReaders<std::int16_t>(readers);
  addReaders<std::uint16_t>(readers);
  addReaders<std::int32_t>(readers);
  addReaders<std::uint32_t>(readers);
  addReaders<std::int64_t>(readers);
  addReaders<std::uint64_t>(readers);
  addReaders<double>(readers);
  addReaders<std::string>(readers);
  addReaders<sdbus::ObjectPath>(readers);
  addReaders<sdbus::Variant>(readers);
  addReaders<BusDate>(readers);
  addReaders<Bytes>(readers);
  addReaders<BusArray>(readers);
  addReaders<std::vector<std::string>>(readers);
  addReaders<BusDictionary>(readers);
  addReaders<std::map<std::string, std::string>>(readers);
  return readers;
}

std::optional<Value> fromBus(const sdbus::Variant& value, int depth) {
  static NeverDestroyed<const Readers> readers(makeReaders());
  const auto reader = readers->find(value.peekValueType());
  if (reader == readers->end()) return std::nullopt;
  return reader->second(value, depth);
}

}  // namespace

std::optional<BusDictionary> busDictionaryFromValues(const Value::Dictionary& values) {
  return dictionaryToBus(values, 1);
}

Value::Dictionary valuesFromBusDictionary(const BusDictionary& values) {
  const std::optional<Value> result = fromBus(values, 1);
  return result ? *result->get<Value::Dictionary>() : Value::Dictionary();
}

bool isBusText(const std::string& text) {
  if (text.find('\0') != std::string::npos) return false;
  return isValidUTF8(text);
}

}  // namespace karno::platform
