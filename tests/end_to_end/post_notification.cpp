// Posts distributed notifications that no well-behaved client would:
//   karno_post_notification NAME OBJECT COUNT [KEY=STRING | KEY:=INTEGER]...
// An OBJECT of "-" posts without an object. In a STRING, "%" becomes the number of the notification, from 1
// to COUNT, in five digits; of texts with "|" between them each is posted in its turn.
#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace {

using karno::platform::DistributedNotification;
using karno::platform::Value;

std::string textInTurn(const std::string& texts, int number) {
  std::vector<std::string> all;
  std::istringstream stream(texts);
  for (std::string text; std::getline(stream, text, '|');) all.push_back(text);
  if (all.empty()) return {};
  std::string text = all[static_cast<std::size_t>(number - 1) % all.size()];
  if (const std::size_t mark = text.find('%'); mark != std::string::npos) {
    text.replace(mark, 1, fmt::format("{:05}", number));
  }
  return text;
}

Value::Dictionary userInfo(const std::vector<std::string>& words, int number) {
  Value::Dictionary result;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    if (equals > 0 && word[equals - 1] == ':') {
      result.emplace(word.substr(0, equals - 1), std::int64_t{std::stoll(word.substr(equals + 1))});
      continue;
    }
    result.emplace(word.substr(0, equals), textInTurn(word.substr(equals + 1), number));
  }
  return result;
}

int run(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() < 3) {
    std::cerr << "usage: karno_post_notification NAME OBJECT COUNT [KEY=STRING | KEY:=INTEGER]...\n";
    return 64;
  }
  DistributedNotification notification{.name = words[0], .object = words[1], .userInfo = {}};
  if (words[1] == "-") notification.object.reset();
  const std::vector<std::string> pairs(words.begin() + 3, words.end());
  auto& centre = karno::platform::nativePlatform(argc, argv).distributedNotifications;
  for (int number = 1; number <= std::stoi(words[2]); ++number) {
    notification.userInfo = userInfo(pairs, number);
    if (!centre.post(notification)) return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "karno_post_notification: " << error.what() << '\n';
    return 1;
  }
}
