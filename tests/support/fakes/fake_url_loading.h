#pragma once
#include <map>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/url_loading.h"

namespace karno::test {

// A network that serves what a test lays down; everything else cannot be reached.
class FakeURLLoading final : public platform::URLLoading {
 public:
  struct Request {
    std::string url;
    std::string thread;
  };

  explicit FakeURLLoading(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  platform::Result<std::string> contentsOfURL(const std::string& url) override {
    requests.push_back({url, scheduler_.currentThreadName()});
    const auto found = bodies.find(url);
    if (found != bodies.end()) return found->second;
    return platform::Error("NSURLErrorDomain", -1009,
                           {{"NSLocalizedDescription", "The Internet connection appears to be offline."}});
  }

  std::map<std::string, std::string> bodies;
  std::vector<Request> requests;

 private:
  FakeScheduler& scheduler_;
};

}  // namespace karno::test
