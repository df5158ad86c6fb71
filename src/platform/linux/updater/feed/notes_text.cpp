#include "platform/linux/updater/feed/notes_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "platform/text/utf8.h"

namespace karno::platform::updates {
namespace {

constexpr std::array<std::string_view, 20> kBlocks = {
    "p",  "div", "br", "ul",    "ol",      "li",      "h1",     "h2",     "h3",  "h4",
    "h5", "h6",  "tr", "table", "section", "article", "header", "footer", "pre", "hr"};
constexpr std::array<std::string_view, 4> kHidden = {"script", "style", "head", "title"};
constexpr std::array<std::pair<std::string_view, std::string_view>, 14> kEntities = {{{"amp", "&"},
                                                                                      {"lt", "<"},
                                                                                      {"gt", ">"},
                                                                                      {"quot", "\""},
                                                                                      {"apos", "'"},
                                                                                      {"nbsp", " "},
                                                                                      {"ndash", "–"},
                                                                                      {"mdash", "—"},
                                                                                      {"hellip", "…"},
                                                                                      {"bull", "•"},
                                                                                      {"lsquo", "‘"},
                                                                                      {"rsquo", "’"},
                                                                                      {"ldquo", "“"},
                                                                                      {"rdquo", "”"}}};
constexpr std::size_t kEntityBytesMax = 10;

template <class List>
bool has(const List& list, std::string_view word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

char lowercase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

std::string numericEntity(std::string_view digits) {
  const bool isHexadecimal = digits.starts_with('x') || digits.starts_with('X');
  if (isHexadecimal) digits.remove_prefix(1);
  std::uint32_t point = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), point, isHexadecimal ? 16 : 10);
  std::string text;
  if (error != std::errc() || end != digits.data() + digits.size()) return text;
  appendUTF8(text, point == 0 ? kReplacementCharacter : point);
  return text;
}

class Reader {
 public:
  explicit Reader(std::string_view html) : rest_(html) {}

  std::string text() {
    while (!rest_.empty()) {
      if (rest_.starts_with("<!--")) {
        skipPast("-->");
      } else if (rest_.front() == '<') {
        takeTag();
      } else if (rest_.front() == '&') {
        takeEntity();
      } else {
        takeCharacter();
      }
    }
    while (!text_.empty() && (text_.back() == '\n' || text_.back() == ' ')) text_.pop_back();
    return std::move(text_);
  }

 private:
  void skipPast(std::string_view end) {
    const std::size_t place = rest_.find(end);
    rest_.remove_prefix(place == std::string_view::npos ? rest_.size() : place + end.size());
  }

  void skipToClosing(const std::string& name) {
    const std::string tag = "</" + name;
    const auto found = std::search(rest_.begin(), rest_.end(), tag.begin(), tag.end(),
                                   [](char one, char other) { return lowercase(one) == other; });
    rest_.remove_prefix(static_cast<std::size_t>(found - rest_.begin()));
  }

  void takeTag() {
    const std::size_t end = rest_.find('>');
    std::string_view tag = rest_.substr(1, end == std::string_view::npos ? end : end - 1);
    skipPast(">");
    const bool closes = tag.starts_with('/');
    if (closes) tag.remove_prefix(1);
    std::string name(tag.substr(0, tag.find_first_of(" \t\r\n/")));
    std::transform(name.begin(), name.end(), name.begin(), lowercase);
    if (!closes && has(kHidden, name)) {
      skipToClosing(name);
      return skipPast(">");
    }
    if (!has(kBlocks, name)) return;
    endLine();
    if (name == "li" && !closes) text_ += "• ";
    if (name.size() == 2 && name[0] == 'h' && !closes && !text_.empty()) text_ += '\n';
  }

  void takeEntity() {
    const std::size_t end = rest_.substr(0, kEntityBytesMax).find(';');
    if (end == std::string_view::npos) return takeCharacter();
    const std::string_view name = rest_.substr(1, end - 1);
    const auto* const named = std::find_if(kEntities.begin(), kEntities.end(),
                                           [&](const auto& each) { return each.first == name; });
    std::string found = named != kEntities.end() ? std::string(named->second) : std::string();
    if (name.starts_with('#')) found = numericEntity(name.substr(1));
    if (found.empty()) return takeCharacter();
    text_ += found;
    rest_.remove_prefix(end + 1);
  }

  void takeCharacter() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
    if (!isBlank) {
      text_ += c;
    } else if (!text_.empty() && text_.back() != ' ' && text_.back() != '\n') {
      text_ += ' ';
    }
  }

  void endLine() {
    while (!text_.empty() && text_.back() == ' ') text_.pop_back();
    if (!text_.empty() && text_.back() != '\n') text_ += '\n';
  }

  std::string_view rest_;
  std::string text_;
};

}  // namespace

std::string plainTextOfHTML(std::string_view html) { return Reader(html).text(); }

std::string shownNotes(std::string notes) {
  if (notes.size() <= kShownNotesBytesMax) return notes;
  const auto isInsideCharacter = [&](std::size_t place) {
    return (static_cast<unsigned char>(notes[place]) & 0xC0U) == 0x80U;
  };
  std::size_t end = kShownNotesBytesMax;
  while (end > 0 && isInsideCharacter(end)) --end;
  notes.resize(end);
  return notes + "\n…";
}

std::string shownNotes(std::string notes, NotesFormat format) {
  return shownNotes(format == NotesFormat::HTML ? plainTextOfHTML(notes) : std::move(notes));
}

}  // namespace karno::platform::updates
