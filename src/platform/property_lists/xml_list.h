#pragma once
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/value.h"

// The XML form of property lists.
namespace karno::platform::lists {

// UTF-8 only. Comments, processing instructions and a document type without declarations of its own are
// skipped; entities are the five of XML and character references. Elements nested deeper than kMaxValueDepth,
// unknown elements and contents that do not fit their element are errors that name the line.
Result<Value> readXMLList(std::string_view xml);

// Dates are written in whole seconds. An error only for a value nested too deeply.
Result<std::string> writeXMLList(const Value& value);

}  // namespace karno::platform::lists
