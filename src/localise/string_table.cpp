#include "localise/string_table.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace karno {
namespace {

constexpr std::int64_t kReadCorrupt = 3840;  // NSPropertyListReadCorruptError, which JSON shares

// The library's own message would repeat the part of the file that was read last, however long.
Error unreadable(std::string reason) {
  return Error(std::string(platform::kCocoaErrorDomain), kReadCorrupt,
               {{std::string(platform::kLocalizedDescriptionKey),
                 "The data couldn’t be read because it isn’t in the correct format."},
                {"NSDebugDescription", std::move(reason)}});
}

}  // namespace

Result<StringTable> stringTableFromJson(std::string_view json) {
  try {
    nlohmann::json document = nlohmann::json::parse(json);
    if (!document.is_object()) return unreadable("The top level is not an object.");
    StringTable table;
    for (auto& [token, text] : document.get_ref<nlohmann::json::object_t&>()) {
      if (text.is_string()) table.emplace(token, std::move(text.get_ref<std::string&>()));
    }
    return table;
  } catch (const nlohmann::json::parse_error& error) {
    return unreadable(fmt::format("Not JSON from byte {} on.", error.byte));
  } catch (const nlohmann::json::exception&) {
    return unreadable("A number is out of range.");
  }
}

}  // namespace karno
