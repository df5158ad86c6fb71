#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace karno::platform {

inline constexpr std::string_view kPOSIXErrorDomain = "NSPOSIXErrorDomain";
inline constexpr std::string_view kCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view kURLErrorDomain = "NSURLErrorDomain";
inline constexpr std::string_view kLocalizedDescriptionKey = "NSLocalizedDescription";

// What went wrong: a domain, a code that means something in it, and texts for people. A value type;
// two errors are equal when all three parts are.
class Error {
 public:
  using UserInfo = std::map<std::string, std::string, std::less<>>;

  Error(std::string domain, std::int64_t code) : domain_(std::move(domain)), code_(code) {}
  Error(std::string domain, std::int64_t code, UserInfo userInfo)
      : domain_(std::move(domain)), code_(code), userInfo_(std::move(userInfo)) {}

  // A POSIX-domain error without user information; its texts come from the system's text for `code`.
  static Error posix(int code);

  const std::string& domain() const { return domain_; }
  std::int64_t code() const { return code_; }

  // Absent when the error was made without any, which differs from an empty one.
  const std::optional<UserInfo>& userInfo() const { return userInfo_; }

  // The text under kLocalizedDescriptionKey, or the platform's standard sentence with domain and code.
  std::string localizedDescription() const;

  // The full form for logs: Error Domain=... Code=... "..." UserInfo={...}
  std::string description() const;

  bool operator==(const Error&) const = default;

 private:
  std::string domain_;
  std::int64_t code_;
  std::optional<UserInfo> userInfo_;
};

// Either a value or the error that stood in its way.
template <class T, class Failure = Error>
class Result {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(Failure error) : state_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return state_.index() == 0; }
  const T& value() const { return std::get<0>(state_); }
  T& value() { return std::get<0>(state_); }
  const Failure& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, Failure> state_;
};

}  // namespace karno::platform
