#pragma once
#include "settings/karno_tristate.h"

namespace karno::karnoctl {

// What decides which build runs when the command line does not say it.
struct ChoiceFacts {
  KarnoTristate administrator = KarnoTristate::NotSet;
  bool verified = false;      // the user's choice was settled by an earlier start
  bool storedChoice = false;  // what was settled: the File Provider build or not
  bool firstStartup = true;
};

enum class ChoiceRule { Administrator, SettledBefore, FirstStartup, AlreadyUsingFuse };

struct BuildChoice {
  bool useFileProvider = false;
  ChoiceRule rule = ChoiceRule::AlreadyUsingFuse;
  bool operator==(const BuildChoice&) const = default;
};

// What the next start of the launcher decides, without deciding it: the launcher writes the choice down.
BuildChoice buildChoice(const ChoiceFacts& facts);

}  // namespace karno::karnoctl
