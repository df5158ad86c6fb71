#pragma once
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace karno::appcast {

// Why something cannot be done, as one line for the person at the terminal. Thrown anywhere in this program
// and shown by run().
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A failure of the system, with its own words for the error number.
inline Failure systemFailure(const std::string& doing, int error) {
  return Failure(doing + ": " + std::generic_category().message(error));
}

}  // namespace karno::appcast
