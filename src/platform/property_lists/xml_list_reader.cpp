#include <fmt/format.h>

#include "platform/property_lists/errors.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/scalar_texts.h"
#include "platform/property_lists/xml_list.h"
#include "platform/property_lists/xml_scanner.h"
#include "platform/text/utf8.h"

namespace karno::platform::lists {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kWhiteSpace);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

template <class T>
T required(std::optional<T> value, const char* otherwise) {
  if (!value) {
    throw Damage(otherwise);
  }
  return *std::move(value);
}

class Reader {
 public:
  explicit Reader(std::string_view xml) : scanner_(xml) {}

  Value read() {
    scanner_.skipToTag();
    XMLTag tag = scanner_.readTag();
    const bool isWrapped = tag.name == "plist" && !tag.isClosing && !tag.isEmpty;
    if (isWrapped) {
      scanner_.skipToTag();
      tag = scanner_.readTag();
    }
    Value value = readElement(tag, 1);
    scanner_.skipToTag();
    if (isWrapped) {
      readClosing("plist");
      scanner_.skipToTag();
    }
    if (!scanner_.isAtEnd()) {
      throw Damage("something follows the value");
    }
    return value;
  }

  std::size_t lineNumber() const { return scanner_.lineNumber(); }

 private:
  Value readElement(const XMLTag& tag, int depth) {
    if (tag.isClosing) {
      throw Damage("a value is missing");
    }
    if (tag.name == "dict") {
      return readDictionary(tag, depth);
    }
    if (tag.name == "array") {
      return readArray(tag, depth);
    }
    return readScalar(tag.name, contents(tag));
  }

  static Value readScalar(std::string_view name, const std::string& text) {
    if (name == "string") {
      return Value(text);
    }
    if (name == "true" || name == "false") {
      if (!trimmed(text).empty()) {
        throw Damage("a boolean has contents");
      }
      return Value(name == "true");
    }
    if (name == "integer") {
      return required(integerOfText(trimmed(text)), "an integer is none");
    }
    if (name == "real") {
      return Value(required(realOfText(trimmed(text)), "a real is none"));
    }
    if (name == "date") {
      return Value(required(dateOfText(trimmed(text)), "a date is none"));
    }
    if (name == "data") {
      return Value(required(dataOfText(text), "data is not base 64"));
    }
    throw Damage("an element is unknown");
  }

  Value readArray(const XMLTag& tag, int depth) {
    requireDepth(depth);
    Value::Array values;
    if (tag.isEmpty) {
      return Value(std::move(values));
    }
    while (true) {
      scanner_.skipToTag();
      const XMLTag next = scanner_.readTag();
      if (next.isClosing && next.name == "array") {
        return Value(std::move(values));
      }
      values.push_back(readElement(next, depth + 1));
    }
  }

  Value readDictionary(const XMLTag& tag, int depth) {
    requireDepth(depth);
    Value::Dictionary values;
    if (tag.isEmpty) {
      return Value(std::move(values));
    }
    while (true) {
      scanner_.skipToTag();
      const XMLTag next = scanner_.readTag();
      if (next.isClosing && next.name == "dict") {
        return Value(std::move(values));
      }
      if (next.isClosing || next.name != "key") {
        throw Damage("a key is missing");
      }
      std::string key = contents(next);
      scanner_.skipToTag();
      values.insert_or_assign(std::move(key), readElement(scanner_.readTag(), depth + 1));
    }
  }

  // The text of an element without elements of its own, through its closing tag.
  std::string contents(const XMLTag& tag) {
    if (tag.isEmpty) {
      return {};
    }
    std::string text = scanner_.readText();
    readClosing(tag.name);
    return text;
  }

  void readClosing(std::string_view name) {
    const XMLTag tag = scanner_.readTag();
    if (!tag.isClosing || tag.name != name) {
      throw Damage("a closing tag is missing");
    }
  }

  static void requireDepth(int depth) {
    if (depth > kMaxValueDepth) {
      throw Damage("it is nested too deeply");
    }
  }

  XMLScanner scanner_;
};

}  // namespace

Result<Value> readXMLList(std::string_view xml) {
  if (xml.starts_with(kByteOrderMark)) {
    xml.remove_prefix(kByteOrderMark.size());
  }
  if (!isValidUTF8(xml)) {
    return unreadablePropertyList("it is neither binary nor UTF-8");
  }
  Reader reader(xml);
  try {
    return reader.read();
  } catch (const Damage& damage) {
    return unreadablePropertyList(fmt::format("line {}: {}", reader.lineNumber(), damage.what()));
  }
}

}  // namespace karno::platform::lists
