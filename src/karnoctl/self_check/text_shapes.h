#pragma once
#include <string_view>

namespace karno::karnoctl {

// Whether it can be the name of a host, with or without a port: "updates.example.org", "localhost:8443".
bool looksLikeHost(std::string_view text);

// Whether it can be an Ed25519 key: base64 of 32 bytes.
bool looksLikePublicKey(std::string_view text);

}  // namespace karno::karnoctl
