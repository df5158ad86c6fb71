#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/platform.h"
#include "platform/runtime_check.h"

namespace karno::karnoctl {

struct ReportFile {
  std::string name;
  std::string content;
};

// What support wants to see, with the user disguised in names and texts.
struct ReportContent {
  std::vector<ReportFile> files;
  std::vector<std::string> leftOut;  // "karno-wrapper.old.log: No such file or directory"
};

// Reads logs, crash reports of the last 30 days and settings, and asks karnoctl itself, in processes of their
// own, for status, explanation, diagnosis and self-check.
ReportContent gatherReport(const platform::Platform& platform, const platform::RuntimeCheck& runtime);

// The files in a folder of that name, all of that date and readable by their owner alone, as "ustar" of
// POSIX.1 has it; tar(1) would write the owner's name down. Of a long name the last 100 bytes are kept.
std::string tarArchive(std::string_view folder, const std::vector<ReportFile>& files, platform::Date date);

}  // namespace karno::karnoctl
