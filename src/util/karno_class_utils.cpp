#include "util/karno_class_utils.h"

#include <string>

namespace karno {

using platform::Value;

bool KarnoClassUtils::isKindOfClassForItem(const std::optional<Value>& item, ValueClass typeOfClass) {
  if (!item) return false;
  switch (typeOfClass) {
    case ValueClass::Number:
      return item->isNumber();
    case ValueClass::String:
      return item->isString();
    case ValueClass::Date:
      return item->get<platform::Date>() != nullptr;
    case ValueClass::Data:
      return item->get<Value::Data>() != nullptr;
    case ValueClass::Array:
      return item->get<Value::Array>() != nullptr;
    case ValueClass::Dictionary:
      return item->get<Value::Dictionary>() != nullptr;
  }
  return false;
}

}  // namespace karno
