#pragma once
#include <string>
#include <string_view>

#include "platform/date.h"

namespace karno::karnoctl {

// An archive as "ustar" of POSIX.1 has it. tar(1) would write the owner's name into it.
class TarArchive {
 public:
  // Everything lies in a folder of that name. `date` is that of all files.
  TarArchive(std::string_view folder, platform::Date date);

  // A file, readable by its owner. Of a long name the last 100 bytes are kept.
  void add(std::string_view name, std::string_view content);

  // The archive with its end.
  std::string bytes() const;

 private:
  const std::string folder_;
  const long long seconds_;
  std::string bytes_;
};

}  // namespace karno::karnoctl
