#pragma once
#include <string_view>

namespace karno::platform {

// Whether it can be an Ed25519 key: base64 of 32 bytes.
bool looksLikePublicKey(std::string_view text);

}  // namespace karno::platform
