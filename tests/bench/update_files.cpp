#include "update_files.h"

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "load.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileBytes = 384'000;  // of each kind; all files together pack to about 100 MB

std::size_t files() { return amount(std::size_t{200}, std::size_t{2}); }
std::size_t libraryBytes() { return amount(std::size_t{15'000'000}, std::size_t{300'000}); }

void run(const fs::path& folder, const std::string& command) {
  const std::string line = "cd '" + folder.string() + "' && { " + command + "; } >/dev/null 2>&1";
  if (std::system(line.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

void write(const fs::path& path, std::string_view bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string contentOf(const fs::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

// What is packed already, such as pictures.
std::string packed(std::mt19937_64& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

// What packs as programs do, to about four tenths.
std::string packable(std::mt19937_64& random, std::size_t size) {
  constexpr std::array<std::string_view, 8> kParts{"\x55\x48\x89\xE5", "\x48\x8B\x45\xF8", "\xE8\x1A",
                                                   "symbol_name_of_",  "\x0F\x1F\x40\x01", "\xC3\x90\x90",
                                                   "std::string",      "\x48\x83\xEC\x10"};
  std::string bytes;
  while (bytes.size() < size) {
    const std::uint64_t draw = random();
    bytes += kParts[draw % kParts.size()];
    bytes += static_cast<char>(draw >> 32U);
  }
  return bytes;
}

std::string infoPlist(std::string_view version) {
  return "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>it.vantul.KarnoWrapper</string>"
         "<key>CFBundleExecutable</key><string>Karno</string><key>CFBundleVersion</key><string>" +
         std::string(version) + "</string></dict></plist>\n";
}

void writeBundle(const fs::path& bundle, std::string_view version) {
  write(bundle / "Contents/Info.plist", infoPlist(version));
  write(bundle / "Contents/MacOS/Karno", "#!/bin/sh\n");
  ::chmod((bundle / "Contents/MacOS/Karno").c_str(), 0755);
}

void fillBundle(const fs::path& bundle) {
  std::mt19937_64 random(1);
  for (std::size_t number = 0; number < files(); ++number) {
    const fs::path folder = bundle / "Contents/Resources" / std::to_string(number % 20);
    write(folder / ("picture" + std::to_string(number)), packed(random, kFileBytes));
    write(folder / ("texts" + std::to_string(number)), packable(random, kFileBytes / 2));
  }
  for (const char* name : {"One", "Two"})
    write(bundle / "Contents/Frameworks" / name, packable(random, libraryBytes()));
}

}  // namespace

UpdateFiles::UpdateFiles() : folder_(Workplace::machine() / "update") {
  writeBundle(present(), "1");
  writeBundle(folder_ / "Karno.app", "2");
  fillBundle(folder_ / "Karno.app");
  run(folder_, "zip -q -r -y update.zip Karno.app");
  run(folder_, "tar -czf update.tar.gz Karno.app");
  run(folder_, "openssl genpkey -algorithm ed25519 -out secret.pem");
  run(folder_, "openssl pkey -in secret.pem -pubout -out public.pem");
  // The key itself is the end of its DER form.
  run(folder_,
      "openssl pkey -in secret.pem -pubout -outform DER | tail -c 32 | base64 -w0 >key.base64; sync -f .");
  for (const fs::path& archive : {zip(), tarGzip()}) {
    run(folder_, "openssl pkeyutl -sign -rawin -inkey secret.pem -in '" + archive.string() + "' -out '" +
                     signatureFile(archive).string() + "'");
    run(folder_, "base64 -w0 '" + signatureFile(archive).string() + "' >'" + archive.string() + ".base64'");
  }
}

const UpdateFiles& UpdateFiles::made() {
  static const UpdateFiles files;
  return files;
}

std::string UpdateFiles::signatureOf(const fs::path& archive) const {
  return contentOf(archive.string() + ".base64");
}

std::string UpdateFiles::publicKey() const { return contentOf(folder_ / "key.base64"); }

fs::path UpdateFiles::signatureFile(const fs::path& archive) const { return archive.string() + ".signature"; }

fs::path UpdateFiles::freshFolder() const {
  const fs::path folder = folder_ / "into";
  fs::remove_all(folder);
  fs::create_directory(folder);
  fs::permissions(folder, fs::perms::owner_all);
  // No run is to wait for what the one before it has left to be written.
  run(folder_, "sync -f .");
  return folder;
}

}  // namespace karno::bench
