#pragma once
#include <filesystem>
#include <string>

#include "subprocess.h"

namespace karno::test {

// A web server of this test's own for https and http, with a certificate authority made for it. It serves the
// pages that are put into it and misbehaves under the paths that web_server.py lists.
class WebServer {
 public:
  // `folder` is an existing one for this server alone; `program` is web_server.py. Throws std::runtime_error
  // when the server does not answer.
  WebServer(const std::filesystem::path& program, std::filesystem::path folder);

  void putPage(const std::string& path, const std::string& contents) const;

  std::string https(const std::string& path) const { return url("https", httpsPort_, path); }
  std::string http(const std::string& path) const { return url("http", httpPort_, path); }
  std::string httpsHost() const { return "localhost:" + httpsPort_; }

  // What a client of the server must trust, as a PEM file.
  std::filesystem::path authority() const { return folder_ / "authority.pem"; }

  // A line for each request: "GET /path", a tab, the User-Agent.
  std::string requests() const;

 private:
  static std::string url(const std::string& scheme, const std::string& port, const std::string& path) {
    return scheme + "://localhost:" + port + path;
  }

  const std::filesystem::path folder_;
  const Subprocess process_;
  std::string httpsPort_;
  std::string httpPort_;
};

}  // namespace karno::test
