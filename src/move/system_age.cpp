#include "move/system_age.h"

#include <cmath>

#include "platform/platform.h"

namespace karno {
namespace {

constexpr double kAppKitOfMacOS10_5 = 949;
constexpr double kAppKitOfMacOS10_8 = 1187;

double appKitVersion() { return std::floor(platform::host().systemVersion.appKitVersionNumber()); }

}  // namespace

bool isNewerThanMacOS10_5() { return appKitVersion() > kAppKitOfMacOS10_5; }

bool canFileManagerTrash() { return appKitVersion() >= kAppKitOfMacOS10_8; }

}  // namespace karno
