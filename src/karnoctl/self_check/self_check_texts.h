#pragma once
#include <string>
#include <vector>

#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Whether each language has its tables, they can be read, and none lacks a text that another has.
// `information` is that of the launcher's Info.plist, which names the languages; without it only the base
// texts are looked at.
void checkTexts(const CheckedBundle& bundle, const platform::Value::Dictionary& information);

}  // namespace karno::karnoctl
