#pragma once
#include <string_view>

#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform::lists {

inline constexpr std::string_view kBinaryListMagic = "bplist00";
inline constexpr double kReferenceDateSeconds = 978307200;  // 2001-01-01, from which stored dates count
inline constexpr std::string_view kReferenceKey =
    "CF$UID";  // of the dictionary that is an archive's reference

enum class ArchiveReferences { Refused, Allowed };

// The binary form of property lists. Errors are references outside the list, cycles, nesting beyond
// kMaxValueDepth, shared objects that unfold beyond the UnfoldingBudget, texts that are not ASCII where they
// say so, and kinds that no property list has. Keyed archives contain references, which property lists do
// not.
Result<Value> readBinaryList(std::string_view bytes, ArchiveReferences references);

}  // namespace karno::platform::lists
