#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/posix/scoped_descriptor.h"

// What an installer leaves behind for the launcher's next start when nobody is there to be told that an
// update could not be put in its place: a small file beside the bundle, of the user's own.
namespace karno::platform {

struct InstallVerdict {
  std::string version;  // CFBundleVersion of what was to be installed; empty when it could not be read
  std::string reason;   // a sentence for people, in English

  bool operator==(const InstallVerdict&) const = default;
};

inline constexpr std::size_t kInstallVerdictBytesMax = 4096;

std::string installVerdictPath(const std::string& bundle);

// Two lines. What would not fit, or is no text, does not read back.
std::string installVerdictText(const InstallVerdict& verdict);

// Nothing when the bytes are anything but what installVerdictText() writes. What is read stands in one line.
std::optional<InstallVerdict> parseInstallVerdict(std::string_view bytes);

// The verdict on the bundle, which is removed by that: a second time there is none. None either when it is
// another user's, or an installer is still at work. One that is too large or damaged is an error.
std::optional<Result<InstallVerdict>> takeInstallVerdict(const std::string& bundle);

// The installer's end of it. While it lives nobody else takes the file, and when the process is killed the
// file says what was written last.
class InstallVerdictFile {
 public:
  InstallVerdictFile(const std::string& bundle, std::string version);

  // 0 or an errno.
  int write(std::string_view reason);
  void remove();

 private:
  const std::string path_;
  const std::string version_;
  int error_ = 0;
  ScopedDescriptor file_;
};

}  // namespace karno::platform
