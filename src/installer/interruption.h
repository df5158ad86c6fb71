#pragma once

namespace karno::installer {

// From now on SIGTERM, SIGINT and SIGHUP only leave a mark, and a broken pipe or a file over the process's
// size limit becomes an error of the write.
void noteInterruptions();

// Whether one of the three came. Any thread.
bool wasInterrupted();

}  // namespace karno::installer
