#include <ostream>

#include "command_line/arguments.h"
#include "karno-appcast/archives/mapped_file.h"
#include "karno-appcast/archives/release_folder.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/release_rules.h"
#include "karno-appcast/keys/key_file.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {
namespace {

void requireRelease(const std::string& path, const PrivateKey& key) {
  try {
    requireKey(readRelease(path), key.publicKey(), key);
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  }
}

int sign(const command_line::Arguments& arguments, std::ostream& out) {
  const std::string path = arguments.requiredWord();
  const PrivateKey key = readKeyFile(arguments.required("--private"));
  const MappedFile archive(path);
  if (!arguments.has("--any-file")) requireRelease(path, key);
  out << "sparkle:edSignature=\"" << key.signatureOf(archive.bytes()) << "\" length=\""
      << archive.bytes().size() << "\"\n";
  return command_line::kExitOk;
}

int verify(const command_line::Arguments& arguments, std::ostream& out) {
  const std::string path = arguments.requiredWord();
  const std::string signature = arguments.required("--signature");
  const std::string key = arguments.required("--public-key");
  const MappedFile archive(path);
  if (!isSignatureOf(archive.bytes(), signature, key))
    throw Failure(path + " does not have this signature by the owner of this key");
  out << path << " is signed by the owner of this key\n";
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb signVerb(std::ostream& out) {
  return {.name = "sign",
          .synopsis = "ARCHIVE --private FILE [--any-file]",
          .summary = "print the signature of one archive",
          .help =
              "Prints two attributes for the enclosure of a feed: the signature and the length in bytes. An\n"
              "archive is looked into first, as by the verb feed.\n"
              "\n"
              "  --private FILE  the private key\n"
              "  --any-file      sign the file unseen, whatever it is\n",
          .options = {"--private"},
          .flags = {"--any-file"},
          .word = "ARCHIVE",
          .run = [&out](const auto& arguments) { return sign(arguments, out); }};
}

command_line::Verb verifyVerb(std::ostream& out) {
  return {.name = "verify",
          .synopsis = "ARCHIVE --signature TEXT --public-key KEY",
          .summary = "check an archive as a launcher does",
          .help = "Exits with 0 when the signature is that of exactly this archive, else with 1.\n",
          .options = {"--signature", "--public-key"},
          .word = "ARCHIVE",
          .run = [&out](const auto& arguments) { return verify(arguments, out); }};
}

}  // namespace karno::appcast
