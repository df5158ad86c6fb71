// A client in one file: reads its launcher's identifier, posts what it is told to, and ends after a farewell
// or with its launcher. The FIFO that KARNO_CLIENT_MESSAGES names stands for a user: "message" or
// "message=reason", by line.
//   Mac:    c++ -std=c++20 client.cpp -framework CoreFoundation
//   Linux:  c++ -std=c++20 client.cpp $(pkg-config --cflags --libs sdbus-c++)
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <string>
#if __has_include(<CoreFoundation/CoreFoundation.h>)
#include <CoreFoundation/CoreFoundation.h>

static void post(const std::string& message, const std::string& reason) {
  const auto text = [](const std::string& bytes) {
    return CFStringCreateWithCString(kCFAllocatorDefault, bytes.c_str(), kCFStringEncodingUTF8);
  };
  const CFStringRef name = CFSTR("it.vantul.Karno.KarnoWrapperNotification");
  const void* keys[] = {CFSTR("message"), CFSTR("reason")};
  const void* values[] = {text(message), text(reason)};
  const CFDictionaryRef userInfo =
      CFDictionaryCreate(kCFAllocatorDefault, keys, values, reason.empty() ? 1 : 2,
                         &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  CFNotificationCenterPostNotificationWithOptions(CFNotificationCenterGetDistributedCenter(), name, name,
                                                  userInfo, kCFNotificationDeliverImmediately);
  for (const void* made : {values[0], values[1], static_cast<const void*>(userInfo)}) CFRelease(made);
}
#else
#include <sdbus-c++/sdbus-c++.h>

static void post(const std::string& message, const std::string& reason) {
  const std::string name = "it.vantul.Karno.KarnoWrapperNotification";
  std::map<std::string, sdbus::Variant> userInfo;
  userInfo.emplace("message", message);
  if (!reason.empty()) userInfo.emplace("reason", reason);
  const auto bus = sdbus::createSessionBusConnection();
  const auto centre = sdbus::createObject(*bus, "/it/vantul/DistributedNotificationCenter");
  auto signal = centre->createSignal("it.vantul.DistributedNotificationCenter", "Posted");
  signal << name << name << userInfo;
  centre->emitSignal(signal);
}
#endif

// Answers whether that was a farewell. The launcher has to hear it before it sees this process end.
static bool say(const std::string& line) try {
  static const std::set<std::string> farewells{
      "user-selected-quit", "app-is-terminating",        "app-needs-restart",
      "restart-wrapper",    "restart-wrapper-with-fuse", "restart-wrapper-with-file-provider"};
  const std::string message = line.substr(0, line.find('='));
  post(message, message == line ? "" : line.substr(message.size() + 1));
  return farewells.contains(message) && ::usleep(500'000) == 0;  // microseconds
} catch (const std::exception& failure) {
  std::cerr << "client: " << failure.what() << '\n';
  return false;
}

int main(int argc, char** argv) {
  const char* const fifo = std::getenv("KARNO_CLIENT_MESSAGES");
  std::cmatch parent;
  if (argc != 2 || !std::regex_match(argv[1], parent, std::regex("--parent ([1-9][0-9]{0,9})"))) {
    std::cerr << "client: it takes one argument, \"--parent N\", a single word with a blank in it\n";
    return 64;
  }
  if (fifo != nullptr && !std::filesystem::is_fifo(fifo)) {
    std::cerr << "client: KARNO_CLIENT_MESSAGES names no FIFO\n";
    return 64;
  }
  pollfd user{.fd = fifo == nullptr ? -1 : ::open(fifo, O_RDWR | O_CLOEXEC), .events = POLLIN, .revents = 0};
  // A process whose parent has ended gets another one.
  while (::getppid() == std::stol(parent[1])) {
    std::string line;
    if (::poll(&user, 1, 1000) <= 0) continue;  // milliseconds
    for (char letter = 0; ::read(user.fd, &letter, 1) == 1 && letter != '\n';) line += letter;
    if (say(line)) return 0;
  }
}
