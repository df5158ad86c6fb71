#pragma once

namespace karno::platform {

// What every process of ours does before its first thread: a broken pipe, or a file that may not grow any
// more, becomes an error of the write instead of the end of the process, children are kept until they are
// waited for whatever the parent had set, and a standard stream that came closed is opened on /dev/null, so
// that no file of ours takes its number.
void setUpProcess();

}  // namespace karno::platform
