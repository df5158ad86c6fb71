#pragma once
#include <string_view>

#include "installer/archive/failure.h"

namespace karno::installer {

// Nothing when `signature` is the Ed25519 signature of `bytes` by the owner of `publicKey`, both in base64:
// 64 and 32 bytes. Any thread.
MaybeFailure checkSignature(std::string_view bytes, std::string_view signature, std::string_view publicKey);

}  // namespace karno::installer
