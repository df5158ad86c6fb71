#pragma once
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/web/curl_library.h"
#include "platform/linux/web/url_errors.h"
#include "platform/linux/web/url_fetch.h"

namespace karno::platform {

// One transfer of libcurl. One thread at a time.
class CurlTransfer {
 public:
  explicit CurlTransfer(const CurlLibrary& curl) : curl_(curl), handle_(curl.easyInit(), curl.easyCleanup) {}

  explicit operator bool() const { return handle_ != nullptr; }

  // The address, what is trusted and how long things may take. `url` and `userAgent` are copied.
  void prepare(const std::string& url, const std::string& userAgent, const URLLimits& limits);

  template <class Value>
  void set(CURLoption option, Value value) {
    curl_.easySetOption(handle_.get(), option, value);
  }

  CURLcode perform() { return curl_.easyPerform(handle_.get()); }

  long number(CURLINFO info) const;
  std::optional<std::string> text(CURLINFO info) const;

  // What Foundation says of that failure of perform().
  URLErrorCode codeOf(CURLcode failure) const;

 private:
  URLErrorCode codeOfFailedConnection() const;

  const CurlLibrary& curl_;
  const std::unique_ptr<CURL, decltype(CurlLibrary::easyCleanup)> handle_;
};

}  // namespace karno::platform
