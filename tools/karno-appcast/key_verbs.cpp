#include <ostream>

#include "command_line/arguments.h"
#include "karno-appcast/key_file.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {
namespace {

constexpr std::string_view kDefaultKeyFile = "karno-update.key";

int makeKeys(const command_line::Arguments& arguments, std::ostream& out) {
  const PrivateKey key = PrivateKey::random();
  createKeyFile(arguments.value("--private").value_or(std::string(kDefaultKeyFile)), key);
  out << key.publicKey() << '\n';
  return command_line::kExitOk;
}

int printPublicKey(const command_line::Arguments& arguments, std::ostream& out) {
  out << readKeyFile(arguments.required("--private")).publicKey() << '\n';
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb keysVerb(std::ostream& out) {
  return {.name = "keys",
          .synopsis = "[--private FILE]",
          .summary = "make the pair of keys that releases are signed and checked with",
          .help =
              "Writes a new private key to FILE, karno-update.key by default, which only you can read and\n"
              "which is never overwritten. Prints the public key, for SUPublicEDKey in the bundle's\n"
              "Info.plist. Keep the private key where nobody else can read it and where it does not get\n"
              "lost: launchers take no update that another key has signed.\n",
          .options = {"--private"},
          .run = [&out](const auto& arguments) { return makeKeys(arguments, out); }};
}

command_line::Verb publicKeyVerb(std::ostream& out) {
  return {.name = "public-key",
          .synopsis = "--private FILE",
          .summary = "print the public key that belongs to a private one",
          .help = "Prints the public key, for SUPublicEDKey in the bundle's Info.plist.\n",
          .options = {"--private"},
          .run = [&out](const auto& arguments) { return printPublicKey(arguments, out); }};
}

}  // namespace karno::appcast
