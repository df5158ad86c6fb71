#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "platform/posix/scoped_descriptor.h"
#include "temporary_folder.h"

namespace karno::test {

// Leads this process's standard error into a file while it lives.
class StandardErrorCapture {
 public:
  StandardErrorCapture() : before_(::dup(STDERR_FILENO)) {
    const platform::ScopedDescriptor file(
        ::open((folder_ / "err").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600));
    ::dup2(file.get(), STDERR_FILENO);
  }
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;
  ~StandardErrorCapture() { ::dup2(before_.get(), STDERR_FILENO); }

  std::string text() const { return contentOf(folder_ / "err"); }

 private:
  TemporaryFolder folder_;
  platform::ScopedDescriptor before_;
};

}  // namespace karno::test
