#pragma once
#include <string>

namespace karno::platform {

// Exchanges what two paths lead to in one step: at every instant each of them leads to one or the other. 0 or
// an errno; both lie on one file system (EXDEV), which has to know the exchange (EINVAL).
int exchangeInOneStep(const std::string& one, const std::string& other);

}  // namespace karno::platform
