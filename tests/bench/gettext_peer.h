#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace karno::bench {

// Texts by GNU gettext and {fmt}: a compiled catalogue with the texts of one of our tables, in which the
// placeholders are named fields. While it lives, the process has the locale C.UTF-8 for messages.
class GettextPeer {
 public:
  // Compiles the catalogue with msgfmt in `folder`. Throws when that fails.
  GettextPeer(const std::filesystem::path& table, const std::filesystem::path& folder);
  ~GettextPeer();
  GettextPeer(const GettextPeer&) = delete;
  GettextPeer& operator=(const GettextPeer&) = delete;

  std::string itemAndMore(std::string_view name, int more) const;

 private:
  std::string localeBefore_;
};

}  // namespace karno::bench
