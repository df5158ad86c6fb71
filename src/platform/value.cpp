#include "platform/value.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <ctime>

namespace karno::platform {
namespace {

constexpr std::size_t kIndentColumns = 4;
constexpr std::size_t kDescriptionDepthMax = 64;

// Foundation prints only ASCII letters and digits without quotes: "1.0" and "com.example" have them.
bool isBareCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string quotedWhereNeeded(const std::string& text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isBareCharacter)) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    if (c == '\n') {
      quoted += "\\n";
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string dateText(Date date) {
  // In seconds, since the moment itself rounded down may lie before the smallest moment of a clock.
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch();
  return fmt::format("{:%Y-%m-%d %H:%M:%S} +0000", fmt::gmtime(std::time_t{seconds.count()}));
}

std::string dataText(const Value::Data& data) {
  std::string text = fmt::format("{{length = {}, bytes = 0x", data.size());
  for (const std::byte byte : data) text += fmt::format("{:02x}", std::to_integer<unsigned>(byte));
  return text + "}";
}

// Prints one value; texts inside a container are quoted where needed, one that stands alone is not. As in
// Foundation, the bracket that opens a nested container has the container's indentation in front of it.
class Describer {
 public:
  Describer(std::size_t depth, bool insideContainer) : depth_(depth), insideContainer_(insideContainer) {}

  std::string operator()(bool value) const { return value ? "1" : "0"; }
  std::string operator()(std::int64_t value) const { return inContainer(fmt::format("{}", value)); }
  std::string operator()(double value) const { return inContainer(fmt::format("{}", value)); }
  std::string operator()(const std::string& value) const { return inContainer(value); }
  std::string operator()(Date value) const { return inContainer(dateText(value)); }
  std::string operator()(const Value::Data& value) const { return dataText(value); }

  std::string operator()(const Value::Array& values) const {
    if (depth_ >= kDescriptionDepthMax) return "(...)";
    std::string text = indent(depth_) + "(\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
      text += indent(depth_ + 1) + nested(values[i]) + (i + 1 < values.size() ? ",\n" : "\n");
    }
    return text + indent(depth_) + ")";
  }

  std::string operator()(const Value::Dictionary& entries) const {
    if (depth_ >= kDescriptionDepthMax) return "{...}";
    std::string text = indent(depth_) + "{\n";
    for (const auto& [key, value] : entries) {
      text += indent(depth_ + 1) + quotedWhereNeeded(key) + " = " + nested(value) + ";\n";
    }
    return text + indent(depth_) + "}";
  }

 private:
  static std::string indent(std::size_t depth) { return std::string(depth * kIndentColumns, ' '); }
  std::string nested(const Value& value) const {
    return std::visit(Describer(depth_ + 1, true), value.storage());
  }
  std::string inContainer(const std::string& text) const {
    return insideContainer_ ? quotedWhereNeeded(text) : text;
  }

  std::size_t depth_;
  bool insideContainer_;
};

bool isWhiteSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  });
}

// Whether the text reads as a decimal number other than zero: blanks, a sign, digits, a fraction.
bool isNonZeroNumber(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  for (const char c : text) {
    if (c >= '1' && c <= '9') return true;
    if (c != '0' && c != '.') return false;
  }
  return false;
}

}  // namespace

bool Value::isNumber() const {
  return get<bool>() != nullptr || get<std::int64_t>() != nullptr || get<double>() != nullptr;
}

std::string Value::description() const { return std::visit(Describer(0, false), storage_); }

bool stringTruth(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  while (!text.empty() && text.front() == '0') text.remove_prefix(1);
  if (text.empty()) return false;
  const char c = text.front();
  return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

bool plainBoolean(const std::optional<Value>& value) {
  if (!value) return false;
  if (const bool* boolean = value->get<bool>()) return *boolean;
  if (const std::int64_t* integer = value->get<std::int64_t>()) return *integer != 0;
  if (const double* number = value->get<double>()) return *number != 0.0;
  const std::string* const text = value->get<std::string>();
  if (text == nullptr) return false;
  return equalsIgnoringCase(*text, "YES") || equalsIgnoringCase(*text, "true") || isNonZeroNumber(*text);
}

}  // namespace karno::platform
