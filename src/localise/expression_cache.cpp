#include "localise/expression_cache.h"

#include <fmt/format.h>

#include "platform/platform.h"

namespace karno {

Result<ExpressionCache::Expression> ExpressionCache::expressionForKey(std::string_view key) {
  if (Expression expression = find(key)) return expression;

  auto compiled =
      platform::host().text.makeRegularExpression(fmt::format(R"(\{{\s*\{{\s*{}\s*\}}\s*\}})", key));
  if (!compiled) return compiled;

  const std::scoped_lock lock(mutex_);
  if (expressions_.size() >= kExpressionsMax) expressions_.clear();
  expressions_.insert_or_assign(std::string(key), compiled.value());
  return compiled;
}

ExpressionCache::Expression ExpressionCache::find(std::string_view key) {
  const std::scoped_lock lock(mutex_);
  const auto found = expressions_.find(key);
  return found == expressions_.end() ? nullptr : found->second;
}

}  // namespace karno
