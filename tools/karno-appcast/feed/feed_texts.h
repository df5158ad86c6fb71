#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// The texts of a feed that follow a form.
namespace karno::appcast {

// Whether a feed can carry the text: UTF-8 without control characters, which XML does not allow even as
// references.
bool isTextForFeed(std::string_view text);

// "Sat, 21 Nov 2026 14:00:00 +0000", whatever the language of this machine.
std::string feedDate(std::int64_t secondsSince1970);

// The prefix with a slash at its end and the file's name behind it, encoded where a URL wants that.
std::string downloadURL(std::string_view prefix, std::string_view fileName);

// The prefix as it was given, or a Failure when it is no http or https URL with a host; http only where
// allowed.
std::string checkedPrefix(std::string_view prefix, bool allowHTTP);

// A Failure when it is no https address of a page, or no http one where allowed.
void checkedAddress(std::string_view address, bool allowHTTP);

// "11.0" as the three-part "11.0.0". A Failure when it is not one to three numbers with dots between.
std::string threePartVersion(std::string_view version);

}  // namespace karno::appcast
