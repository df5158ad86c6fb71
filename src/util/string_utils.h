#pragma once
#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

namespace karno {

// Small operations on UTF-8 strings, with the platform's rules for all of Unicode. Safe from any thread.

// The text with each component appended as a path component: one "/" between parts, runs of "/" collapsed,
// none at the end. An empty list gives the text unchanged.
std::string u_stringByAppendingPathComponents(std::string_view text,
                                              const std::vector<std::string>& components);

// Every word, as the user's locale finds and capitalises words; what stands between them is kept.
std::string u_captilisiedString(std::string_view text);

bool u_containsString(std::string_view text, std::string_view searched);

// Whether the text begins with http, any number of letters s, a colon and two slashes, in any case.
// Deliberately loose.
bool u_hasHTTPSPrefix(std::string_view text);

// Whether the text's path extension, lowercased, is in the list (which must be in lower case).
bool u_hasPathExtension(std::string_view text, const std::vector<std::string>& extensions);

// Percent-encoded for use in the path of a URL.
std::string u_pathEncodedString(std::string_view text);

// A set of Unicode characters, as a test of one code point.
using CharacterSet = std::function<bool(char32_t)>;

bool u_onlyContainsCharactersInSet(std::string_view text, const CharacterSet& set);

bool u_isEqualToCaseInsensitive(std::string_view text, std::string_view other);

std::string u_stringForInteger(std::int64_t integer);

// The text without the white space and newlines, of all of Unicode, at its ends.
std::string trimmingWhitespaceAndNewlines(std::string_view text);

// The last path component, ".." and "." included; trailing slashes do not count.
std::string lastPathComponent(std::string_view path);

// The components of the path, "/" first for an absolute one.
std::vector<std::string> pathComponents(std::string_view path);

// The path without its last component.
std::string deletingLastPathComponent(std::string_view path);

// What follows the last point of the last path component; empty for a name that only begins with its point.
std::string pathExtension(std::string_view path);

// What "%@" prints of a value that may be missing.
std::string descriptionOrNull(const std::optional<platform::Value>& value);
std::string descriptionOrNull(const std::optional<std::string>& text);

}  // namespace karno
