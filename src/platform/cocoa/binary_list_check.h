#pragma once
#include <optional>
#include <string_view>

#include "platform/error.h"

namespace karno::platform::cocoa {

inline constexpr std::string_view kBinaryListMagic = "bplist00";

enum class ArchiveReferences { Refused, Allowed };

// Follows every object of a binary property list from its root and answers what makes it unfit to be handed
// to the framework's reader, of which GNUstep's trusts the input: references outside the list, cycles,
// nesting beyond kMaxValueDepth, shared objects that unfold beyond the UnfoldingBudget, texts that are not
// ASCII where they say so, kinds that no property list has. Keyed archives contain references, which property
// lists do not.
std::optional<Error> checkBinaryList(std::string_view bytes, ArchiveReferences references);

}  // namespace karno::platform::cocoa
