#include "karnoctl/self_check/self_check_bundle.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include "karnoctl/log/log_printer.h"
#include "karnoctl/programs/program_file.h"
#include "platform/property_lists/property_lists.h"

namespace karno::karnoctl {
namespace {

constexpr std::size_t kContentBytesMax = 4 * 1024 * 1024;

bool isPosix(const platform::Error& error, int code) {
  return error.domain() == platform::kPOSIXErrorDomain && error.code() == code;
}

// Why there is no file, or no folder.
std::string sentenceFor(const std::string& name, const platform::Error& error, std::string_view cost) {
  if (isPosix(error, ENOENT) || isPosix(error, ENOTDIR)) return fmt::format("{} is missing: {}.", name, cost);
  if (isPosix(error, EISDIR)) return fmt::format("{} is a folder: {}.", name, cost);
  return fmt::format("{} cannot be read ({}): {}.", name, reasonOf(error), cost);
}

}  // namespace

CheckedBundle::CheckedBundle(const platform::Platform& platform, const platform::RuntimeCheck& runtime,
                             const ProgramImage& ownProgram, std::string path, SelfCheckFindings& findings)
    : platform_(platform),
      runtime_(runtime),
      ownProgram_(ownProgram),
      path_(std::move(path)),
      findings_(findings) {}

void CheckedBundle::wrong(std::string_view sentence) const {
  findings_.wrong.push_back(withoutControlCharacters(sentence));
}

void CheckedBundle::note(std::string_view sentence) const {
  findings_.notes.push_back(withoutControlCharacters(sentence));
}

bool CheckedBundle::hasFile(const std::string& file, std::string_view cost) const {
  const auto opened = platform_.fileReading.open(pathOf(file));
  if (!opened) wrong(sentenceFor(file, opened.error(), cost));
  return static_cast<bool>(opened);
}

bool CheckedBundle::hasFolder(const std::string& folder, std::string_view cost) const {
  const auto opened = platform_.fileReading.open(pathOf(folder));
  if (!opened && isPosix(opened.error(), EISDIR)) return true;
  wrong(opened ? fmt::format("{} is no folder: {}.", folder, cost)
               : sentenceFor(folder, opened.error(), cost));
  return false;
}

std::optional<std::string> CheckedBundle::content(const std::string& file, std::string_view cost) const {
  const auto opened = platform_.fileReading.open(pathOf(file));
  if (!opened) {
    wrong(sentenceFor(file, opened.error(), cost));
    return std::nullopt;
  }
  // One byte more tells a file that is too large from one that just fits.
  auto bytes = opened.value()->read(0, kContentBytesMax + 1);
  if (!bytes) {
    wrong(sentenceFor(file, bytes.error(), cost));
    return std::nullopt;
  }
  if (bytes.value().size() > kContentBytesMax) {
    wrong(fmt::format("{} is far too large: {}.", file, cost));
    return std::nullopt;
  }
  return std::move(bytes.value());
}

std::optional<platform::Value::Dictionary> CheckedBundle::dictionary(const std::string& file,
                                                                     std::string_view cost) const {
  const auto bytes = content(file, cost);
  if (!bytes) return std::nullopt;
  ++findings_.propertyLists;
  const auto list = platform::parsePropertyList(*bytes);
  if (!list) {
    wrong(fmt::format("{} is damaged ({}): {}.", file, reasonOf(list.error()), cost));
    return std::nullopt;
  }
  const auto* const entries = list.value().get<platform::Value::Dictionary>();
  if (entries == nullptr) {
    wrong(fmt::format("{} is no dictionary: {}.", file, cost));
    return std::nullopt;
  }
  return *entries;
}

platform::Result<ProgramImage> CheckedBundle::program(const std::string& file) const {
  return programAtPath(platform_.fileReading, pathOf(file));
}

}  // namespace karno::karnoctl
