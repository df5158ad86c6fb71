#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/report/report_content.h"
#include "platform/date.h"

namespace karno::karnoctl {

// The files in a folder of that name, all of that date and readable by their owner alone, as "ustar" of
// POSIX.1 has it; tar(1) would write the owner's name down. Of a long name the last 100 bytes are kept.
std::string tarArchive(std::string_view folder, const std::vector<ReportFile>& files, platform::Date date);

}  // namespace karno::karnoctl
