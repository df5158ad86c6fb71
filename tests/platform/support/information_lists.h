#pragma once
#include <ostream>
#include <string>
#include <vector>

#include "binary_list_builder.h"
#include "property_list_texts.h"

namespace karno::test {

// The Info.plist of a bundle in a form that only a whole reader takes for what it says. The launcher, the
// installer and the release tool have to find the same in it.
struct InformationList {
  std::string form;
  std::string bytes;
  std::string name;  // also the identifier
  std::string version;
};

inline std::string informationText(const std::string& name, const std::string& versions) {
  return propertyList(stringEntry("CFBundleIdentifier", name) + stringEntry("CFBundleName", name) +
                      stringEntry("CFBundleExecutable", "Karno") + versions);
}

inline std::vector<InformationList> informationLists() {
  const std::string version = stringEntry("CFBundleVersion", "20");
  return {
      {"CommentInAText", informationText("a.b<!-- c -->.c", version), "a.b.c", "20"},
      {"CharacterDataInAText",
       informationText("a", "<key>CFBundleVersion</key><string>1<![CDATA[0]]></string>"), "a", "10"},
      {"KeyGivenTwice", informationText("a", stringEntry("CFBundleVersion", "10") + version), "a", "20"},
      {"BinaryForm",
       binaryListOfTexts({{"CFBundleIdentifier", "a"},
                          {"CFBundleName", "a"},
                          {"CFBundleExecutable", "Karno"},
                          {"CFBundleVersion", "20"}}),
       "a", "20"},
  };
}

inline void PrintTo(const InformationList& list, std::ostream* out) { *out << list.form; }

}  // namespace karno::test
