#include "platform/linux/web/curl_library.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "platform/linux/web/url_errors.h"
#include "platform/never_destroyed.h"

namespace karno::platform {
namespace {

constexpr const char* kName = "libcurl.so.4";

Error notLoaded(const char* name) {
  const char* const reason = ::dlerror();
  return Error(std::string(kURLErrorDomain), static_cast<std::int64_t>(URLErrorCode::Unknown),
               {{std::string(kLocalizedDescriptionKey),
                 fmt::format("{} cannot be used: {}.", name, reason == nullptr ? "unknown error" : reason)}});
}

template <class Function>
bool find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  return function != nullptr;
}

Result<CurlLibrary> loadAndInitialise() {
  Result<CurlLibrary> library = CurlLibrary::load(kName);
  if (library) library.value().globalInit(CURL_GLOBAL_DEFAULT);
  return library;
}

}  // namespace

Result<CurlLibrary> CurlLibrary::load(const char* name) {
  void* const library = ::dlopen(name, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return notLoaded(name);
  CurlLibrary curl;
  const bool isComplete =
      find(library, "curl_global_init", curl.globalInit) && find(library, "curl_easy_init", curl.easyInit) &&
      find(library, "curl_easy_cleanup", curl.easyCleanup) &&
      find(library, "curl_easy_setopt", curl.easySetOption) &&
      find(library, "curl_easy_perform", curl.easyPerform) &&
      find(library, "curl_easy_getinfo", curl.easyGetInfo) && find(library, "curl_url", curl.url) &&
      find(library, "curl_url_cleanup", curl.urlCleanup) && find(library, "curl_url_set", curl.urlSet) &&
      find(library, "curl_url_get", curl.urlGet) && find(library, "curl_free", curl.free);
  if (!isComplete) return notLoaded(name);
  return curl;
}

const Result<CurlLibrary>& CurlLibrary::instance() {
  static NeverDestroyed<Result<CurlLibrary>> library(loadAndInitialise());
  return library.get();
}

}  // namespace karno::platform
