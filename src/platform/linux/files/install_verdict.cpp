#include "platform/linux/files/install_verdict.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "platform/posix/files/whole_file.h"
#include "platform/posix/retry.h"
#include "platform/text/one_line.h"
#include "platform/text/utf8.h"

namespace karno::platform {
namespace {

constexpr std::string_view kName = ".karno-update-verdict-";
constexpr std::string_view kVersion = "version ";
constexpr std::string_view kReason = "failed ";

// The rest of a line that begins so, without its end; the line is taken off.
std::optional<std::string> takeLine(std::string_view& bytes, std::string_view beginning) {
  const std::size_t end = bytes.find('\n');
  if (!bytes.starts_with(beginning) || end == std::string_view::npos) return std::nullopt;
  const std::string_view rest = bytes.substr(beginning.size(), end - beginning.size());
  bytes.remove_prefix(end + 1);
  return inOneLine(rest);
}

// At most one byte more than a verdict may have.
Result<std::string> readSome(int file) {
  std::array<char, kInstallVerdictBytesMax + 1> buffer;
  std::size_t count = 0;
  while (count < buffer.size()) {
    const ssize_t got =
        retryOnInterrupt([&] { return ::read(file, buffer.data() + count, buffer.size() - count); });
    if (got < 0) return Error::posix(errno);
    if (got == 0) break;
    count += static_cast<std::size_t>(got);
  }
  return std::string(buffer.data(), count);
}

Result<InstallVerdict> readVerdict(int file) {
  const Result<std::string> bytes = readSome(file);
  if (!bytes) return bytes.error();
  if (bytes.value().size() > kInstallVerdictBytesMax) return Error::posix(EFBIG);
  auto verdict = parseInstallVerdict(bytes.value());
  if (!verdict) return Error::posix(EBADMSG);
  return std::move(*verdict);
}

bool isOwnFile(int file) {
  struct stat status = {};
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

}  // namespace

std::string installVerdictPath(const std::string& bundle) {
  const std::filesystem::path path(bundle);
  return (path.parent_path() / (std::string(kName) + path.filename().string())).string();
}

std::string installVerdictText(const InstallVerdict& verdict) {
  return fmt::format("{}{}\n{}{}\n", kVersion, verdict.version, kReason, verdict.reason);
}

std::optional<InstallVerdict> parseInstallVerdict(std::string_view bytes) {
  if (bytes.size() > kInstallVerdictBytesMax || !isValidUTF8(bytes)) return std::nullopt;
  auto version = takeLine(bytes, kVersion);
  auto reason = takeLine(bytes, kReason);
  if (!version || !reason || reason->empty() || !bytes.empty()) return std::nullopt;
  return InstallVerdict{.version = std::move(*version), .reason = std::move(*reason)};
}

std::optional<Result<InstallVerdict>> takeInstallVerdict(const std::string& bundle) {
  const std::string path = installVerdictPath(bundle);
  // Neither a pipe nor a device may hold up the launcher.
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const ScopedDescriptor file(retryOnInterrupt([&] { return ::open(path.c_str(), kFlags); }));
  if (!file.isOpen() || !isOwnFile(file.get())) return std::nullopt;
  if (::flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) return std::nullopt;
  ::unlink(path.c_str());
  return readVerdict(file.get());
}

InstallVerdictFile::InstallVerdictFile(const std::string& bundle, std::string version)
    : path_(installVerdictPath(bundle)), version_(std::move(version)) {
  ::unlink(path_.c_str());
  file_ = ScopedDescriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file_.isOpen()) {
    error_ = errno;
    return;
  }
  // Where there are no locks a launcher that starts meanwhile takes it, as that of an installer that is cut
  // off.
  ::flock(file_.get(), LOCK_EX | LOCK_NB);
}

int InstallVerdictFile::write(std::string_view reason) {
  if (!file_.isOpen()) return error_;
  if (::ftruncate(file_.get(), 0) != 0 || ::lseek(file_.get(), 0, SEEK_SET) != 0) return errno;
  return writeAll(file_.get(), installVerdictText({.version = version_, .reason = std::string(reason)}));
}

void InstallVerdictFile::remove() {
  if (file_.isOpen()) ::unlink(path_.c_str());
}

}  // namespace karno::platform
