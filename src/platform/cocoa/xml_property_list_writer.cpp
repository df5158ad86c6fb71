#include <fmt/format.h>

#include "platform/cocoa/property_list_error.h"
#include "platform/cocoa/scalar_texts.h"
#include "platform/cocoa/values.h"
#include "platform/cocoa/xml_property_list.h"
#include "platform/text/utf8.h"

namespace karno::platform::cocoa {
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
  // False when the value is nested too deeply.
  bool write(const Value& value, int depth) {
    return std::visit([this, depth](const auto& stored) { return writeKind(stored, depth); },
                      value.storage());
  }

  std::string take() { return std::move(xml_); }

 private:
  void line(int depth, std::string_view text) {
    xml_.append(static_cast<std::size_t>(depth - 1), '\t');
    xml_ += text;
    xml_ += '\n';
  }

  bool element(int depth, std::string_view name, std::string_view contents) {
    line(depth, fmt::format("<{0}>{1}</{0}>", name, contents));
    return true;
  }

  bool writeKind(bool truth, int depth) {
    line(depth, truth ? "<true/>" : "<false/>");
    return true;
  }
  bool writeKind(std::int64_t number, int depth) { return element(depth, "integer", std::to_string(number)); }
  bool writeKind(double number, int depth) { return element(depth, "real", textOfReal(number)); }
  bool writeKind(const std::string& text, int depth) { return element(depth, "string", escaped(text)); }
  bool writeKind(Date date, int depth) { return element(depth, "date", textOfDate(date)); }
  bool writeKind(const Value::Data& data, int depth) { return element(depth, "data", textOfData(data)); }

  bool writeKind(const Value::Array& values, int depth) {
    if (values.empty()) {
      line(depth, "<array/>");
      return depth <= kMaxValueDepth;
    }
    line(depth, "<array>");
    for (const Value& value : values) {
      if (depth > kMaxValueDepth || !write(value, depth + 1)) {
        return false;
      }
    }
    line(depth, "</array>");
    return true;
  }

  bool writeKind(const Value::Dictionary& values, int depth) {
    if (values.empty()) {
      line(depth, "<dict/>");
      return depth <= kMaxValueDepth;
    }
    line(depth, "<dict>");
    for (const auto& [key, value] : values) {
      element(depth + 1, "key", escaped(key));
      if (depth > kMaxValueDepth || !write(value, depth + 1)) {
        return false;
      }
    }
    line(depth, "</dict>");
    return true;
  }

  std::string xml_;
};

}  // namespace

Result<std::string> writeXMLList(const Value& value) {
  Writer writer;
  if (!writer.write(value, 1)) {
    return unwritablePropertyList("it is nested too deeply");
  }
  return std::string(kOpening) + writer.take() + std::string(kClosing);
}

}  // namespace karno::platform::cocoa
