#include "platform/linux/updater/installer_answer.h"

#include <charconv>

#include "platform/linux/updater/update_errors.h"

namespace karno::platform::updates {
namespace {

bool takeWord(std::string_view& line, std::string_view word) {
  if (!line.starts_with(word)) return false;
  line.remove_prefix(word.size());
  return true;
}

template <class Number>
bool takeNumber(std::string_view& line, Number& number) {
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc()) return false;
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  return true;
}

}  // namespace

std::optional<InstallerAnswer::Amount> InstallerAnswer::take(std::string_view line) {
  Amount amount;
  std::int64_t code = 0;
  std::string_view rest = line;
  if (takeWord(rest, "ready ")) {
    ready_ = std::string(rest);
  } else if (takeWord(rest, "failed ") && takeNumber(rest, code) && takeWord(rest, " ")) {
    failure_ = updateError(static_cast<UpdateErrorCode>(code), std::string(rest));
  } else if (takeWord(rest, "progress ") && takeNumber(rest, amount.done) && takeWord(rest, " ") &&
             takeNumber(rest, amount.total) && rest.empty()) {
    return amount;
  }
  return std::nullopt;
}

Result<std::string> InstallerAnswer::outcome() const {
  if (failure_) return *failure_;
  if (ready_ && ready_->starts_with('/')) return *ready_;
  return updateError(UpdateErrorCode::Unpacking, "The installer ended before the update was unpacked.");
}

}  // namespace karno::platform::updates
