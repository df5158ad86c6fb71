#include "platform/posix/files/home.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

#include "platform/posix/environment.h"

namespace karno::platform {
namespace {

constexpr std::size_t kAccountBytesMax = 1U << 20U;

// One field of this user's entry in the account database; empty when there is none.
std::string accountField(char* passwd::*field) {
  std::vector<char> buffer(4096);
  passwd account = {};
  passwd* found = nullptr;
  int error = ::getpwuid_r(::getuid(), &account, buffer.data(), buffer.size(), &found);
  while (error == ERANGE && buffer.size() < kAccountBytesMax) {
    buffer.resize(buffer.size() * 2);
    error = ::getpwuid_r(::getuid(), &account, buffer.data(), buffer.size(), &found);
  }
  return found == nullptr || found->*field == nullptr ? std::string() : std::string(found->*field);
}

}  // namespace

std::string homeFolder() {
  std::string home = environmentVariable("HOME");
  if (home.empty()) home = accountField(&passwd::pw_dir);
  while (home.size() > 1 && home.back() == '/') home.pop_back();
  return home.empty() ? "/" : home;
}

std::string userName() {
  std::string name = accountField(&passwd::pw_name);
  if (name.empty()) name = environmentVariable("USER");
  return name.empty() ? std::to_string(::getuid()) : name;
}

}  // namespace karno::platform
