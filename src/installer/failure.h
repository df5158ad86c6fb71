#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace karno::installer {

// What stands in the way of an update. The numbers are part of what the program prints.
enum class FailureCode {
  LengthDiffers = 2001,
  Unpacking = 3000,
  Signature = 3001,
  Validation = 3002,
  NotNewer = 4006,
};

struct Failure {
  FailureCode code = FailureCode::Unpacking;
  std::string text;  // a sentence for people, in English

  bool operator==(const Failure&) const = default;
};

// Nothing when all went well.
using MaybeFailure = std::optional<Failure>;

// Either a value or what stood in its way.
template <class T>
class Outcome {
 public:
  Outcome(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Outcome(Failure failure) : state_(std::in_place_index<1>, std::move(failure)) {}

  explicit operator bool() const { return state_.index() == 0; }
  T& value() { return std::get<0>(state_); }
  const T& value() const { return std::get<0>(state_); }
  const Failure& failure() const { return std::get<1>(state_); }

 private:
  std::variant<T, Failure> state_;
};

// A failure to unpack with the system's words for an errno.
Failure systemFailure(int error);

// One line of well-formed UTF-8 for people, whatever bytes came in: others become question marks, and what is
// too long is cut.
std::string oneLine(std::string_view bytes);

}  // namespace karno::installer
