#include <ostream>

#include "karno-appcast/arguments.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/key_file.h"
#include "karno-appcast/mapped_file.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {
namespace {

void sign(const Arguments& arguments, std::ostream& out) {
  const std::string path = arguments.word();
  const PrivateKey key = readKeyFile(arguments.required("--private"));
  const MappedFile archive(path);
  out << "sparkle:edSignature=\"" << key.signatureOf(archive.bytes()) << "\" length=\""
      << archive.bytes().size() << "\"\n";
}

void verify(const Arguments& arguments, std::ostream& out) {
  const std::string path = arguments.word();
  const std::string signature = arguments.required("--signature");
  const std::string key = arguments.required("--public-key");
  const MappedFile archive(path);
  if (!isSignatureOf(archive.bytes(), signature, key))
    throw Failure(path + " does not have this signature by the owner of this key");
  out << path << " is signed by the owner of this key\n";
}

}  // namespace

Verb signVerb() {
  return {
      .name = "sign",
      .synopsis = "ARCHIVE --private FILE",
      .summary = "print the signature of one archive",
      .help = "Prints two attributes for the enclosure of a feed: the signature and the length in bytes.\n",
      .optionsWithValue = {"--private"},
      .flags = {},
      .word = "ARCHIVE",
      .run = sign};
}

Verb verifyVerb() {
  return {.name = "verify",
          .synopsis = "ARCHIVE --signature TEXT --public-key KEY",
          .summary = "check an archive as a launcher does",
          .help = "Exits with 0 when the signature is that of exactly this archive, else with 1.\n",
          .optionsWithValue = {"--signature", "--public-key"},
          .flags = {},
          .word = "ARCHIVE",
          .run = verify};
}

}  // namespace karno::appcast
