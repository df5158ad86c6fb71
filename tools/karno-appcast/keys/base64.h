#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karno::appcast {

// With padding and without line breaks, as keys and signatures are written.
std::string base64(std::span<const unsigned char> bytes);

// Absent unless the text is base64 of exactly that many bytes.
std::optional<std::vector<unsigned char>> bytesOfBase64(std::string_view text, std::size_t count);

}  // namespace karno::appcast
