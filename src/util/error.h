#pragma once
#include "platform/error.h"

namespace karno {

using platform::Error;
using platform::Result;

}  // namespace karno
