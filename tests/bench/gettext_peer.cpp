#include "gettext_peer.h"

#include <fmt/format.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDomain = "karno";
constexpr const char* kLocale = "C.UTF-8";  // gettext looks nothing up in the locale C

// "{{ name }}" becomes "{name}".
std::string withOwnPlaceholders(std::string text) {
  constexpr std::string_view kBegin = "{{ ";
  constexpr std::string_view kEnd = " }}";
  for (std::size_t begin = 0; (begin = text.find(kBegin, begin)) != std::string::npos; ++begin) {
    text.replace(begin, kBegin.size(), "{");
    const std::size_t end = text.find(kEnd, begin);
    if (end == std::string::npos) throw std::runtime_error("a placeholder without an end: " + text);
    text.replace(end, kEnd.size(), "}");
  }
  return text;
}

// A catalogue's texts and a table's escape alike, as C does.
void writeCatalogue(const fs::path& table, const fs::path& catalogue) {
  std::ofstream out(catalogue);
  out << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
  std::ifstream in(table);
  const nlohmann::json texts = nlohmann::json::parse(in);
  for (const auto& [token, text] : texts.items()) {
    out << fmt::format("\nmsgid \"{}\"\nmsgstr \"{}\"\n", token,
                       withOwnPlaceholders(text.get<std::string>()));
  }
}

}  // namespace

GettextPeer::GettextPeer(const fs::path& table, const fs::path& folder)
    : localeBefore_(std::setlocale(LC_MESSAGES, nullptr)) {
  const fs::path messages = folder / kLocale / "LC_MESSAGES";
  const fs::path source = folder / "karno.po";
  fs::create_directories(messages);
  writeCatalogue(table, source);
  const std::string command =
      fmt::format("msgfmt -o '{}' '{}'", (messages / "karno.mo").string(), source.string());
  if (std::system(command.c_str()) != 0) throw std::runtime_error("msgfmt failed");
  if (std::setlocale(LC_MESSAGES, kLocale) == nullptr) throw std::runtime_error("there is no locale C.UTF-8");
  ::unsetenv("LANGUAGE");
  ::bindtextdomain(kDomain, folder.c_str());
  ::bind_textdomain_codeset(kDomain, "UTF-8");
}

GettextPeer::~GettextPeer() { std::setlocale(LC_MESSAGES, localeBefore_.c_str()); }

std::string GettextPeer::itemAndMore(std::string_view name, int more) const {
  return fmt::format(fmt::runtime(::dgettext(kDomain, "ITEM_AND_N_MORE")), fmt::arg("name", name),
                     fmt::arg("n", more));
}

}  // namespace karno::bench
