#pragma once
#include <curl/curl.h>

#include "platform/error.h"

namespace karno::platform {

// libcurl's functions. It is loaded when the first URL is fetched: with the score of libraries that it needs
// it would add a sixth to the memory of a launcher that fetches nothing. Safe from any thread; never
// unloaded.
struct CurlLibrary {
  decltype(&::curl_global_init) globalInit = nullptr;
  decltype(&::curl_easy_init) easyInit = nullptr;
  decltype(&::curl_easy_cleanup) easyCleanup = nullptr;
  decltype(&::curl_easy_setopt) easySetOption = nullptr;
  decltype(&::curl_easy_perform) easyPerform = nullptr;
  decltype(&::curl_easy_getinfo) easyGetInfo = nullptr;
  decltype(&::curl_url) url = nullptr;
  decltype(&::curl_url_cleanup) urlCleanup = nullptr;
  decltype(&::curl_url_set) urlSet = nullptr;
  decltype(&::curl_url_get) urlGet = nullptr;
  decltype(&::curl_free) free = nullptr;

  // The one that everybody uses, ready for use; an error when it is not installed.
  static const Result<CurlLibrary>& instance();

  static Result<CurlLibrary> load(const char* name);
};

}  // namespace karno::platform
