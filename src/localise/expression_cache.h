#pragma once
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/text.h"
#include "util/error.h"

namespace karno {

// The expressions that find placeholders, each compiled once. Safe from any thread.
class ExpressionCache {
 public:
  using Expression = std::shared_ptr<const platform::RegularExpression>;

  // The expression that finds the placeholders of that name. An error is not remembered.
  Result<Expression> expressionForKey(std::string_view key);

  // Names come from code, so there are few; more than these are forgotten all at once.
  static constexpr std::size_t kExpressionsMax = 64;

 private:
  Expression find(std::string_view key);

  std::mutex mutex_;
  std::map<std::string, Expression, std::less<>> expressions_;
};

}  // namespace karno
