#include "web_server.h"

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace karno::test {
namespace {

constexpr int kPolls = 600;
constexpr std::chrono::milliseconds kPortPollInterval{50};

}  // namespace

WebServer::WebServer(const std::filesystem::path& program, std::filesystem::path folder)
    : folder_(std::move(folder)), process_({program, folder_}, folder_ / "server.log") {
  for (int poll = 0; poll < kPolls; ++poll) {
    if (std::ifstream(folder_ / "ports") >> httpsPort_ >> httpPort_) return;
    std::this_thread::sleep_for(kPortPollInterval);
  }
  throw std::runtime_error("the web server does not answer; see " + (folder_ / "server.log").string());
}

void WebServer::putPage(const std::string& path, const std::string& contents) const {
  const std::filesystem::path file = folder_ / "www" / path.substr(1);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << contents;
}

std::string WebServer::requests() const {
  std::ostringstream text;
  text << std::ifstream(folder_ / "requests.log").rdbuf();
  return text.str();
}

}  // namespace karno::test
