#include "karnoctl/error_text.h"

#include <string_view>

namespace karno::karnoctl {

std::string reasonOf(const platform::Error& error) {
  constexpr std::string_view kOpening = "The operation couldn’t be completed. ";
  std::string text = error.localizedDescription();
  if (text.starts_with(kOpening)) text.erase(0, kOpening.size());
  // What has no sentence of its own stands in brackets already.
  if (text.starts_with('(') && text.ends_with(')')) text = text.substr(1, text.size() - 2);
  while (text.ends_with('.')) text.pop_back();
  return text;
}

}  // namespace karno::karnoctl
