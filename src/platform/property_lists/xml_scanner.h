#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace karno::platform::lists {

// One tag: <name ...>, </name> or <name .../>.
struct XMLTag {
  std::string_view name;
  bool isClosing = false;
  bool isEmpty = false;
};

// Walks through the little of XML that property lists use. Every operation throws Damage when the text is
// not what it asks for; the text must be UTF-8 and outlive this.
class XMLScanner {
 public:
  explicit XMLScanner(std::string_view xml) : xml_(xml) {}

  // Skips white space, comments, processing instructions and a document type without declarations of its own.
  void skipToTag();

  // The tag that begins here.
  XMLTag readTag();

  // The text up to the next tag, with entities and CDATA sections resolved and comments left out.
  std::string readText();

  bool isAtEnd() const { return position_ == xml_.size(); }
  std::size_t lineNumber() const;

 private:
  bool skip(std::string_view token);
  void skipThrough(std::string_view token);
  void skipDocumentType();
  void skipAttributes();
  char32_t readEntity();
  std::string_view rest() const { return xml_.substr(position_); }

  std::string_view xml_;
  std::size_t position_ = 0;
};

}  // namespace karno::platform::lists
