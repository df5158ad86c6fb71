#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

#include "call_types.h"

namespace karno::platform::trial {
namespace {

class EncodingReader {
 public:
  explicit EncodingReader(std::string_view encoding) : rest_(encoding) {}

  // The next type; empty at the end.
  std::string next() {
    skipAny("0123456789rnNoORV");
    if (rest_.empty()) return {};
    const char type = take();
    switch (type) {
      case '@':
        skipAny("?");
        return "@";
      case '^':
        return next() == "@" ? "^@" : "^";
      case '*':
        return "^";
      case '{':
        return structure();
      case 'l':
        return "q";
      case 'L':
        return "Q";
      default:
        if (type == kBoolean) return "B";
        if (std::string_view("v#:cCsSiIqQfd").find(type) == std::string_view::npos) {
          throw std::invalid_argument("unknown type encoding: " + std::string(1, type));
        }
        return std::string(1, type);
    }
  }

 private:
  static constexpr char kBoolean = 'C';  // GNUstep's BOOL

  char take() {
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return first;
  }

  void skipAny(std::string_view characters) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(characters), rest_.size()));
  }

  // "{name=types}", whose fields here are all of eight bytes or structures of such.
  std::string structure() {
    rest_.remove_prefix(rest_.find('=') + 1);
    return "{" + std::to_string(sizeOfFields()) + "}";
  }

  std::size_t sizeOfFields() {
    std::size_t size = 0;
    while (rest_.front() != '}') {
      const std::string field = next();
      if (field.front() == '{') {
        size += std::stoul(field.substr(1));
      } else if (std::string_view("qQd").find(field) != std::string_view::npos) {
        size += 8;
      } else {
        throw std::invalid_argument("unknown field: " + field);
      }
    }
    take();
    return size;
  }

  std::string_view rest_;
};

}  // namespace

std::string simplifiedEncoding(const std::string& encoding) {
  EncodingReader reader(encoding);
  std::string simplified;
  for (std::string type = reader.next(); !type.empty(); type = reader.next()) simplified += type;
  return simplified;
}

void checkCall(objc::Id receiver, objc::Sel selector, const std::string& types) {
  const Class cls = object_getClass(receiver);
  const std::string message = std::string(class_getName(cls)) + " " + sel_getName(selector);
  const Method method = class_getInstanceMethod(cls, selector);
  if (method == nullptr) {
    ADD_FAILURE() << "Nobody answers " << message;
    return;
  }
  EXPECT_EQ(simplifiedEncoding(method_getTypeEncoding(method)), types) << "is what was sent as " << message;
}

}  // namespace karno::platform::trial
