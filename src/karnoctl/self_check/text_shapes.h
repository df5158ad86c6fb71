#pragma once
#include <string_view>

namespace karno::karnoctl {

// Whether it can be the name of a host, with or without a port: "updates.example.org", "localhost:8443".
bool looksLikeHost(std::string_view text);

}  // namespace karno::karnoctl
