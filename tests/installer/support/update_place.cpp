#include "support/update_place.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include "installer/archive/extraction.h"

namespace karno::test {
namespace {

class AskingObserver final : public installer::ExtractionObserver {
 public:
  explicit AskingObserver(const std::function<bool(std::uint64_t)>& goesOn) : goesOn_(goesOn) {}
  bool goesOn(std::uint64_t bytesRead) override { return !goesOn_ || goesOn_(bytesRead); }

 private:
  const std::function<bool(std::uint64_t)>& goesOn_;
};

}  // namespace

UpdatePlace::UpdatePlace() {
  writeItems(folder_.path(), bundleItems({.version = "1"}));
  ::mkdir(into().c_str(), 0700);
  request = {.archive = archive(),
             .lengthInBytes = std::nullopt,
             .signature = "",
             .publicKey = key_.publicKey(),
             .bundle = bundle(),
             .into = into()};
}

void UpdatePlace::makeArchive(const std::vector<Item>& items, Format format) {
  std::filesystem::remove(archive());
  writeArchive(archive(), format, items);
  sign(contentOf(archive()));
}

void UpdatePlace::setArchive(const std::string& bytes) {
  replaceArchive(bytes);
  sign(bytes);
}

// A file that is overwritten instead may be brought to the disk each time.
void UpdatePlace::replaceArchive(const std::string& bytes) {
  std::filesystem::remove(archive());
  folder_.write("update", bytes);
}

void UpdatePlace::sign(const std::string& bytes) {
  request.signature = key_.signatureOf(bytes);
  request.lengthInBytes = bytes.size();
}

std::string UpdatePlace::unpack() {
  AskingObserver observer(goesOn);
  const auto unpacked = installer::unpackUpdate(request, observer);
  if (!unpacked) return fmt::format("{} {}", static_cast<int>(unpacked.error().code), unpacked.error().text);
  return "ready " + std::filesystem::path(unpacked.value()).lexically_relative(into()).string();
}

std::string UpdatePlace::unpack(const std::vector<Item>& items, Format format) {
  makeArchive(items, format);
  return unpack();
}

std::vector<std::string> UpdatePlace::command() const {
  return {KARNO_INSTALLER,   "unpack",          "--archive",
          request.archive,   "--length",        std::to_string(*request.lengthInBytes),
          "--signature",     request.signature, "--public-key",
          request.publicKey, "--bundle",        request.bundle,
          "--into",          request.into};
}

}  // namespace karno::test
