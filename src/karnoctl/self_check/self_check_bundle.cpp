#include "karnoctl/self_check/self_check_bundle.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include "karnoctl/log/log_printer.h"
#include "karnoctl/programs/program_image.h"
#include "platform/property_lists/property_lists.h"

namespace karno::karnoctl {
namespace {

constexpr std::size_t kContentBytesMax = 4 * 1024 * 1024;

// Why there is no file, or no folder.
std::string sentenceFor(const std::string& name, const platform::Error& error, std::string_view cost) {
  if (error == platform::Error::posix(ENOENT) || error == platform::Error::posix(ENOTDIR))
    return fmt::format("{} is missing: {}.", name, cost);
  if (error == platform::Error::posix(EISDIR)) return fmt::format("{} is a folder: {}.", name, cost);
  return fmt::format("{} cannot be read ({}): {}.", name, reasonOf(error), cost);
}

}  // namespace

void CheckedBundle::wrong(std::string_view sentence) const {
  findings.wrong.push_back(withoutControlCharacters(sentence));
}

void CheckedBundle::note(std::string_view sentence) const {
  findings.notes.push_back(withoutControlCharacters(sentence));
}

std::unique_ptr<platform::ReadableFile> CheckedBundle::open(const std::string& file,
                                                            std::string_view cost) const {
  auto opened = platform.fileReading.open(pathOf(file));
  if (opened) return std::move(opened.value());
  wrong(sentenceFor(file, opened.error(), cost));
  return nullptr;
}

bool CheckedBundle::hasFile(const std::string& file, std::string_view cost) const {
  return open(file, cost) != nullptr;
}

bool CheckedBundle::hasFolder(const std::string& folder, std::string_view cost) const {
  const auto opened = platform.fileReading.open(pathOf(folder));
  if (!opened && opened.error() == platform::Error::posix(EISDIR)) return true;
  wrong(opened ? fmt::format("{} is no folder: {}.", folder, cost)
               : sentenceFor(folder, opened.error(), cost));
  return false;
}

std::optional<std::string> CheckedBundle::content(const std::string& file, std::string_view cost) const {
  const auto opened = open(file, cost);
  if (!opened) return std::nullopt;
  // One byte more tells a file that is too large from one that just fits.
  auto bytes = opened->read(0, kContentBytesMax + 1);
  if (bytes && bytes.value().size() <= kContentBytesMax) return std::move(bytes.value());
  wrong(bytes ? fmt::format("{} is far too large: {}.", file, cost) : sentenceFor(file, bytes.error(), cost));
  return std::nullopt;
}

std::optional<platform::Value::Dictionary> CheckedBundle::dictionary(const std::string& file,
                                                                     std::string_view cost) const {
  const auto bytes = content(file, cost);
  if (!bytes) return std::nullopt;
  ++findings.propertyLists;
  const auto list = platform::parsePropertyList(*bytes);
  const auto* const entries = list ? list.value().get<platform::Value::Dictionary>() : nullptr;
  if (entries != nullptr) return *entries;
  wrong(list ? fmt::format("{} is no dictionary: {}.", file, cost)
             : fmt::format("{} is damaged ({}): {}.", file, reasonOf(list.error()), cost));
  return std::nullopt;
}

platform::Result<ProgramImage> CheckedBundle::program(const std::string& file) const {
  return programAtPath(platform.fileReading, pathOf(file));
}

}  // namespace karno::karnoctl
