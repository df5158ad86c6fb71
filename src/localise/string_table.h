#pragma once
#include <map>
#include <string>
#include <string_view>

#include "util/error.h"

namespace karno {

// Texts by token, as a table file has them: the escapes in them still stand.
using StringTable = std::map<std::string, std::string, std::less<>>;

// Reads a JSON object of texts. Members that are not texts are left out; of two with one name the later
// counts. The error says where the JSON ends to make sense.
Result<StringTable> stringTableFromJson(std::string_view json);

}  // namespace karno
