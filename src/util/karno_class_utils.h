#pragma once
#include <optional>

#include "platform/value.h"

namespace karno {

// The classes of the values that preferences, defaults and notifications hold.
enum class ValueClass { Number, String, Date, Data, Array, Dictionary };

class KarnoClassUtils {
 public:
  // Whether the item is there and of that class. A boolean is a number.
  static bool isKindOfClassForItem(const std::optional<platform::Value>& item, ValueClass typeOfClass);
};

}  // namespace karno
