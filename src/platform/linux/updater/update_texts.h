#pragma once
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/bundles.h"
#include "platform/files.h"

namespace karno::platform::updates {

// The sentences of the updater's windows in the user's language, from the table "Updater.json" of the bundle.
// A token that no table has stands for itself.
class UpdateTexts {
 public:
  using Fields = std::initializer_list<std::pair<std::string_view, std::string_view>>;

  // A damaged table reads as empty.
  UpdateTexts(const Bundle& bundle, const Files& files);

  // Each "{{ field }}" of the sentence is replaced by what is given for it.
  std::string text(std::string_view token, Fields fields = {}) const;

 private:
  std::map<std::string, std::string, std::less<>> sentences_;
};

}  // namespace karno::platform::updates
