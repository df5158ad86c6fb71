#include "karnoctl/report/disguise.h"

#include <cstddef>

#include "util/string_utils.h"

namespace karno::karnoctl {
namespace {

// No more than that: a computer is often called after its user, as in "Karno_2026-11-20_jo-mac.crash".
bool isInWord(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         static_cast<unsigned char>(byte) >= 0x80;
}

// Nothing that goes on as a longer name is replaced; what stands before a home folder does not matter.
std::string replaced(const std::string& text, const std::string& word, std::string_view by, bool beginsWord) {
  std::string result;
  std::size_t taken = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    if (at < taken || (end < text.size() && isInWord(text[end]))) continue;
    if (beginsWord && at > 0 && isInWord(text[at - 1])) continue;
    result.append(text, taken, at - taken).append(by);
    taken = end;
  }
  return taken == 0 ? text : result.append(text, taken);
}

std::string asInJson(const std::string& path) {
  std::string spelled;
  for (const char byte : path) spelled += byte == '/' ? std::string("\\/") : std::string(1, byte);
  return spelled;
}

}  // namespace

Disguise::Disguise(const std::vector<std::string>& homes, const std::vector<std::string>& names) {
  for (const std::string& home : homes) {
    if (home.size() > 1) homes_.insert(homes_.end(), {home, u_pathEncodedString(home), asInJson(home)});
  }
  for (const std::string& name : names) {
    if (!name.empty()) names_.push_back(name);
  }
}

std::string Disguise::of(std::string text) const {
  for (const std::string& home : homes_) text = replaced(text, home, "~", false);
  for (const std::string& name : names_) text = replaced(text, name, "USER", true);
  return text;
}

}  // namespace karno::karnoctl
