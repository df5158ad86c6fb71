#include <utility>

#include "localise/karno_localise.h"
#include "platform/platform.h"
#include "platform/text/utf8.h"
#include "util/string_utils.h"

namespace karno {
namespace {

void breakLineAfterFirstSentence(std::string& text) {
  const std::size_t end = text.find(". ");
  if (end != std::string::npos) text[end + 1] = '\n';
}

std::string withFirstLetterUppercase(std::string_view text) {
  const platform::Text& rules = platform::host().text;
  std::string_view rest = text;
  if (!rest.empty()) platform::takeCharacter(rest);
  return rules.uppercase(text.substr(0, text.size() - rest.size())).append(rest);
}

}  // namespace

std::string KarnoLocalise::applyOptionsToString(std::string text, Options options) {
  const auto isOn = [options](LocaliseOption option) { return (options & option) != 0; };
  if (isOn(LocaliseOptionEllipsis)) text += "...";
  if (isOn(LocaliseOptionQuestionMark)) text += "?";
  if (isOn(LocaliseOptionNewLineAfterFirstSentence)) breakLineAfterFirstSentence(text);
  if (isOn(LocaliseOptionAreYouSure)) text += "\n\n" + instance().optionAreYouSure();
  if (isOn(LocaliseOptionContactSysAdmin)) text += "\n\n" + instance().optionContactSysAdmin();
  if (isOn(LocaliseOptionUppercase)) text = platform::host().text.uppercase(text);
  if (isOn(LocaliseOptionCapitalised)) text = u_captilisiedString(text);
  if (isOn(LocaliseOptionFirstLetterUppercase)) text = withFirstLetterUppercase(text);
  return text;
}

std::string KarnoLocalise::optionAreYouSure() {
  return textLookedUpOnce(optionAreYouSure_, "MESSAGE_ARE_YOU_SURE_CONTINUE");
}

std::string KarnoLocalise::optionContactSysAdmin() {
  return textLookedUpOnce(optionContactSysAdmin_, "MESSAGE_CONTACT_SYS_ADMIN");
}

// Two threads may both look it up; the first to come back decides.
std::string KarnoLocalise::textLookedUpOnce(std::optional<std::string>& text, std::string_view token) {
  {
    const std::scoped_lock lock(mutex_);
    if (text) return *text;
  }
  std::string found = localisedStringForToken(token);
  const std::scoped_lock lock(mutex_);
  if (!text) text = std::move(found);
  return *text;
}

}  // namespace karno
