#pragma once
#include <string>

namespace karno::appcast {

// What launchers read of a feed.
inline constexpr std::size_t kFeedBytesMax = std::size_t{16} << 20U;

// A feed in a file or behind an address, which is fetched as a launcher does. Each of these throws a Failure.
std::string readFeed(const std::string& place);

// Fetches what is behind the address into a new file.
void fetchInto(const std::string& path, const std::string& url);

// Fetches a page and forgets it.
void fetchPage(const std::string& url);

}  // namespace karno::appcast
