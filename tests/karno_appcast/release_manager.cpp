#include "release_manager.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>

#include "karno-appcast/command_line.h"

namespace karno::appcast::test {
namespace {

// RFC 8032, section 7.1, TEST 1.
constexpr const char* kPrivateKey = "nWGxne/9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A=\n";
constexpr const char* kOtherPrivateKey = "TM0Imyj/ltqdtsNG7BFOD1uKMZ81q6Yk2oz27U+4pvs=\n";  // TEST 2

struct Free {
  void operator()(archive* writer) const { archive_write_free(writer); }
  void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};

void require(bool done, const std::string& what) {
  if (!done) throw std::runtime_error("this test cannot make " + what);
}

// The library knows every ending that a release may have but the newest.
void setKind(archive* writer, const std::string& name) {
  if (name.ends_with(".tar.zst")) {
    require(archive_write_set_format_pax_restricted(writer) == ARCHIVE_OK, name);
    require(archive_write_add_filter_zstd(writer) == ARCHIVE_OK, name);
  } else {
    require(archive_write_set_format_filter_by_ext(writer, name.c_str()) == ARCHIVE_OK, name);
  }
}

__LA_MODE_T typeOf(Kind kind) {
  if (kind == Kind::Folder) return AE_IFDIR;
  if (kind == Kind::Link) return AE_IFLNK;
  return kind == Kind::Pipe ? AE_IFIFO : AE_IFREG;
}

void write(archive* writer, const Entry& each) {
  const std::unique_ptr<archive_entry, Free> entry(archive_entry_new());
  archive_entry_set_pathname(entry.get(), each.path.c_str());
  archive_entry_set_filetype(entry.get(), typeOf(each.kind));
  archive_entry_set_perm(entry.get(), static_cast<__LA_MODE_T>(each.permissions));
  const std::string content = each.kind == Kind::File ? each.content : "";
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
  if (each.kind == Kind::Link) archive_entry_set_symlink(entry.get(), each.content.c_str());
  if (each.kind == Kind::HardLink) archive_entry_set_hardlink(entry.get(), each.content.c_str());
  // A warning: in the C locale a name is written as its bytes.
  require(archive_write_header(writer, entry.get()) >= ARCHIVE_WARN, each.path);
  require(
      archive_write_data(writer, content.data(), content.size()) == static_cast<la_ssize_t>(content.size()),
      each.path);
}

}  // namespace

ReleaseManager::ReleaseManager()
    : keyFile_(desk_.write("private.key", kPrivateKey)),
      otherKeyFile_(desk_.write("other.key", kOtherPrivateKey)) {
  require(::chmod(keyFile_.c_str(), 0600) == 0, keyFile_);
  require(::chmod(otherKeyFile_.c_str(), 0600) == 0, otherKeyFile_);
  std::filesystem::create_directory(folder());
}

int ReleaseManager::run(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = appcast::run(arguments, "1.2.3", out, err);
  out_ = out.str();
  err_ = err.str();
  return status;
}

void ReleaseManager::addArchive(const std::string& name, const Files& files) const {
  const std::unique_ptr<archive, Free> writer(archive_write_new());
  setKind(writer.get(), name);
  require(archive_write_open_filename(writer.get(), inFolder(name).c_str()) == ARCHIVE_OK, name);
  for (const Entry& each : files) write(writer.get(), each);
  require(archive_write_close(writer.get()) == ARCHIVE_OK, name);
  setDate(name);
}

void ReleaseManager::addRelease(const std::string& name, const std::string& version,
                                const std::string& shortVersion, const std::string& publicKey) const {
  addArchive(name,
             joined({{"Karno.app/Contents/Helpers/Karno.app/Contents/Info.plist", infoPlist("999", "9.9.9")}},
                    bundle(infoPlist(version, shortVersion, "10.14.6", publicKey))));
}

void ReleaseManager::addFile(const std::string& name, const std::string& content) const {
  desk_.write("releases/" + name, content);
  setDate(name);
}

void ReleaseManager::cutOff(const std::string& name, std::uintmax_t bytes) const {
  std::filesystem::resize_file(inFolder(name), bytes);
}

void ReleaseManager::setDate(const std::string& name, long secondsSince1970) const {
  const std::array<timespec, 2> times{timespec{secondsSince1970, 0}, timespec{secondsSince1970, 0}};
  require(::utimensat(AT_FDCWD, inFolder(name).c_str(), times.data(), 0) == 0, "the date of " + name);
}

int ReleaseManager::writeFeed(const std::vector<std::string>& options) {
  return writeFeedWith(keyFile_, options);
}

int ReleaseManager::writeFeedWith(const std::string& keyFile, const std::vector<std::string>& options) {
  std::vector<std::string> arguments{"feed",  folder(),       "--private",
                                     keyFile, "--url-prefix", "https://localhost/updates/"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return run(arguments);
}

std::string ReleaseManager::signatureOf(const std::string& name) {
  require(run({"sign", inFolder(name), "--private", keyFile_, "--any-file"}) == 0,
          "the signature of " + name);
  const std::size_t begin = out_.find('"') + 1;
  return out_.substr(begin, out_.find('"', begin) - begin);
}

std::string ReleaseManager::lengthOf(const std::string& name) const {
  return std::to_string(std::filesystem::file_size(inFolder(name)));
}

std::string noise(std::size_t bytes) {
  std::mt19937 source(1);
  std::string text(bytes, '\0');
  std::generate(text.begin(), text.end(), [&source] { return static_cast<char>(source() & 0xFFU); });
  return text;
}

std::string infoPlistWith(const std::string& entries) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <key>CFBundleLocalizations</key>
  <array><string>en</string></array>
  <key>CFBundleExecutable</key>
  <string>Karno</string>
  <key>CFBundleIdentifier</key>
  <string>it.vantul.KarnoWrapper</string>
)" + entries +
         "</dict>\n</plist>\n";
}

std::string infoPlist(const std::string& version, const std::string& shortVersion,
                      const std::string& minimumSystem, const std::string& publicKey) {
  return infoPlistWith("  <key>CFBundleName</key><string>Karno</string>\n" +
                       std::string("  <key>CFBundleShortVersionString</key><string>") + shortVersion +
                       "</string>\n  <key>CFBundleVersion</key><string>" + version +
                       "</string>\n  <key>LSMinimumSystemVersion</key><string>" + minimumSystem +
                       "</string>\n  <key>SUPublicEDKey</key><string>" + publicKey + "</string>\n");
}

Files bundle(const std::string& information, const std::string& name, const std::string& program) {
  return {{name + ".app/Contents/Info.plist", information},
          {name + ".app/Contents/MacOS/Karno", program, Kind::File, 0755}};
}

Files joined(Files files, const Files& more) {
  files.insert(files.end(), more.begin(), more.end());
  return files;
}

}  // namespace karno::appcast::test
