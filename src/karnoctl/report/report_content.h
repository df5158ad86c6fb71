#pragma once
#include <string>
#include <vector>

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
// own, for status, explanation and self-check.
ReportContent gatherReport(const platform::Platform& platform, const platform::RuntimeCheck& runtime);

}  // namespace karno::karnoctl
