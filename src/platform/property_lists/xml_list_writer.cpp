#include <fmt/format.h>

#include <algorithm>

#include "platform/property_lists/errors.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/scalar_texts.h"
#include "platform/property_lists/xml_list.h"
#include "platform/text/utf8.h"

namespace karno::platform::lists {
namespace {

constexpr std::string_view kOpening =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kClosing = "</plist>\n";

std::string escaped(std::string_view text) {
  std::string answer;
  answer.reserve(text.size());
  while (!text.empty()) {
    const char32_t character = takeCharacter(text);
    if (character == '<') {
      answer += "&lt;";
    } else if (character == '>') {
      answer += "&gt;";
    } else if (character == '&') {
      answer += "&amp;";
    } else if (character < 0x20 && character != '\t' && character != '\n') {
      // XML readers turn a carriage return into a newline, and refuse other control characters.
      answer += fmt::format("&#{};", std::uint32_t{character});
    } else {
      appendUTF8(answer, character);
    }
  }
  return answer;
}

class Writer {
 public:
  void write(const Value& value, int depth) {
    std::visit([this, depth](const auto& stored) { writeKind(stored, depth); }, value.storage());
  }

  std::string take() { return std::move(xml_); }

 private:
  void line(int depth, std::string_view text) {
    xml_.append(static_cast<std::size_t>(depth - 1), '\t');
    xml_ += text;
    xml_ += '\n';
  }

  void element(int depth, std::string_view name, std::string_view contents) {
    line(depth, fmt::format("<{0}>{1}</{0}>", name, contents));
  }

  void writeKind(bool truth, int depth) { line(depth, truth ? "<true/>" : "<false/>"); }
  void writeKind(std::int64_t number, int depth) { element(depth, "integer", std::to_string(number)); }
  void writeKind(double number, int depth) { element(depth, "real", textOfReal(number)); }
  void writeKind(const std::string& text, int depth) { element(depth, "string", escaped(text)); }
  void writeKind(Date date, int depth) { element(depth, "date", textOfDate(date)); }
  void writeKind(const Value::Data& data, int depth) { element(depth, "data", textOfData(data)); }

  void writeKind(const Value::Array& values, int depth) {
    container(values, "array", depth, [this, depth](const Value& value) { write(value, depth + 1); });
  }

  void writeKind(const Value::Dictionary& values, int depth) {
    container(values, "dict", depth, [this, depth](const auto& entry) {
      element(depth + 1, "key", escaped(entry.first));
      write(entry.second, depth + 1);
    });
  }

  template <class Container, class WriteElement>
  void container(const Container& values, std::string_view name, int depth, WriteElement writeElement) {
    if (depth > kMaxValueDepth) {
      throw Damage("it is nested too deeply");
    }
    if (values.empty()) {
      return line(depth, fmt::format("<{}/>", name));
    }
    line(depth, fmt::format("<{}>", name));
    std::for_each(values.begin(), values.end(), writeElement);
    line(depth, fmt::format("</{}>", name));
  }

  std::string xml_;
};

}  // namespace

Result<std::string> writeXMLList(const Value& value) {
  Writer writer;
  try {
    writer.write(value, 1);
  } catch (const Damage& damage) {
    return unwritablePropertyList(damage.what());
  }
  return std::string(kOpening) + writer.take() + std::string(kClosing);
}

}  // namespace karno::platform::lists
