#pragma once
#include <string>

namespace karno::test {

// An XML property list around these elements of its root dictionary.
inline std::string propertyList(const std::string& elements) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\"><dict>" +
         elements + "</dict></plist>\n";
}

inline std::string stringEntry(const std::string& key, const std::string& text) {
  return "<key>" + key + "</key><string>" + text + "</string>";
}

}  // namespace karno::test
