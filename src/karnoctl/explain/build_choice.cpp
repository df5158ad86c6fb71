#include "karnoctl/explain/build_choice.h"

namespace karno::karnoctl {

BuildChoice buildChoice(const ChoiceFacts& facts) {
  if (facts.administrator != KarnoTristate::NotSet) {
    return {.useFileProvider = facts.administrator == KarnoTristate::On, .rule = ChoiceRule::Administrator};
  }
  if (facts.verified) return {.useFileProvider = facts.storedChoice, .rule = ChoiceRule::SettledBefore};
  if (facts.firstStartup) return {.useFileProvider = true, .rule = ChoiceRule::FirstStartup};
  return {.useFileProvider = false, .rule = ChoiceRule::AlreadyUsingFuse};
}

}  // namespace karno::karnoctl
