#pragma once
#include <cstdint>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "localise/string_table.h"
#include "platform/never_destroyed.h"

namespace karno {

// What can be done to a finished text, as a bit set. The bits take effect in this order, whatever their
// numbers.
enum LocaliseOption : std::uint32_t {
  LocaliseOptionEllipsis = 4,                    // "..." at the end
  LocaliseOptionQuestionMark = 8,                // "?" at the end
  LocaliseOptionNewLineAfterFirstSentence = 16,  // a line break for the blank of the first ". "
  LocaliseOptionAreYouSure = 1,       // an empty line and the text of MESSAGE_ARE_YOU_SURE_CONTINUE
  LocaliseOptionContactSysAdmin = 2,  // an empty line and the text of MESSAGE_CONTACT_SYS_ADMIN
  LocaliseOptionUppercase = 32,
  LocaliseOptionCapitalised = 64,            // as u_captilisiedString does
  LocaliseOptionFirstLetterUppercase = 128,  // the rest stays as it is
};

// User-visible texts by token, from the JSON tables in the bundle: the one that fits the user's language,
// then the base table. The tables are loaded once and never again. Safe from any thread.
class KarnoLocalise {
 public:
  struct Param {
    std::string_view key;
    std::string_view value;
  };
  using Params = std::span<const Param>;
  using Options = std::uint32_t;  // any of LocaliseOption

  // The text for the token; the token itself when no table has it, nothing for an empty token.
  static std::string localise(std::string_view token);

  // Placeholders are filled in the order of the parameters, each one also in what those before it have put
  // in. A placeholder without a parameter stays.
  static std::string localise(std::string_view token, Params params);
  static std::string localise(std::string_view token, std::initializer_list<Param> params);
  static std::string localise(std::string_view token, Options options);
  static std::string localise(std::string_view token, Params params, Options options);
  static std::string localise(std::string_view token, std::initializer_list<Param> params, Options options);

  static std::string applyOptionsToString(std::string text, Options options);

  // The look-up alone. A token that no table has is told to the console log, never to the log file.
  static std::string localisedStringForToken(std::string_view token);

  // Every "{{ key }}" replaced, whatever white space is in it. The key stands in a regular expression as it
  // is and the value in a replacement template: "$0" and a backslash mean there what they mean in any. A key
  // that makes no expression is logged at WARN level and leaves the text unchanged.
  static std::string stringByReplacingKey(std::string_view key, std::string_view value,
                                          std::string_view text);

  // One item by name, and how many more there are.
  static std::string item(std::string_view name, std::int64_t andMore);

  // The texts of Resources/<directory>/<name>.<type>, or without a directory of the copy for the user's
  // language. Members that are not texts are left out. Absent after a failure, which is logged at WARN level.
  static std::optional<StringTable> loadStringsForResource(const std::string& name, const std::string& type,
                                                           const std::string& directory);

  static KarnoLocalise& instance();

  // The two tables, with the escapes of their files replaced; absent when they could not be read.
  const std::optional<StringTable>& localisedStrings() const { return localisedStrings_; }
  const std::optional<StringTable>& defaultStrings() const { return defaultStrings_; }

  // The texts that the two options append, looked up once.
  std::string optionAreYouSure();
  std::string optionContactSysAdmin();

 private:
  friend class platform::NeverDestroyed<KarnoLocalise>;

  KarnoLocalise();

  // The text lives as long as the tables, or as the token when no table has it.
  static std::string_view textForToken(std::string_view token);

  std::string textLookedUpOnce(std::optional<std::string>& text, std::string_view token);

  const std::optional<StringTable> localisedStrings_;
  const std::optional<StringTable> defaultStrings_;

  std::mutex mutex_;  // guards the two sentences
  std::optional<std::string> optionAreYouSure_;
  std::optional<std::string> optionContactSysAdmin_;
};

}  // namespace karno
