#include <ostream>

#include "karno-appcast/arguments.h"
#include "karno-appcast/key_file.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {
namespace {

constexpr std::string_view kDefaultKeyFile = "karno-update.key";

void makeKeys(const Arguments& arguments, std::ostream& out) {
  const PrivateKey key = PrivateKey::random();
  createKeyFile(arguments.value("--private").value_or(std::string(kDefaultKeyFile)), key);
  out << key.publicKey() << '\n';
}

void printPublicKey(const Arguments& arguments, std::ostream& out) {
  out << readKeyFile(arguments.required("--private")).publicKey() << '\n';
}

}  // namespace

Verb keysVerb() {
  return {.name = "keys",
          .synopsis = "[--private FILE]",
          .summary = "make the pair of keys that releases are signed and checked with",
          .help =
              "Writes a new private key to FILE, karno-update.key by default, which only you can read and\n"
              "which is never overwritten. Prints the public key, for SUPublicEDKey in the bundle's\n"
              "Info.plist. Keep the private key where nobody else can read it and where it does not get\n"
              "lost: launchers take no update that another key has signed.\n",
          .optionsWithValue = {"--private"},
          .flags = {},
          .word = {},
          .run = makeKeys};
}

Verb publicKeyVerb() {
  return {.name = "public-key",
          .synopsis = "--private FILE",
          .summary = "print the public key that belongs to a private one",
          .help = "Prints the public key, for SUPublicEDKey in the bundle's Info.plist.\n",
          .optionsWithValue = {"--private"},
          .flags = {},
          .word = {},
          .run = printPublicKey};
}

}  // namespace karno::appcast
