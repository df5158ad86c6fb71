#include <filesystem>
#include <ostream>

#include "command_line/arguments.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/keys/checkout.h"
#include "karno-appcast/keys/key_file.h"
#include "karno-appcast/verbs.h"

namespace karno::appcast {
namespace {

constexpr std::string_view kDefaultKeyFile = "karno-update.key";

// Whoever commits the key gives it to everybody who has the repository.
void refuseCheckout(const std::string& path) {
  if (const auto checkout = checkoutAround(path))
    throw Failure(path + " would lie in the git checkout " + *checkout +
                  "; choose another folder, or say --in-checkout");
}

int makeKeys(const command_line::Arguments& arguments, std::ostream& out, std::ostream& err) {
  const std::string path = arguments.value("--private").value_or(std::string(kDefaultKeyFile));
  if (!arguments.has("--in-checkout")) refuseCheckout(path);
  const PrivateKey key = PrivateKey::random();
  createKeyFile(path, key);
  out << key.publicKey() << '\n';
  // Beside what scripts read.
  err << "The private key is in " << std::filesystem::absolute(path).lexically_normal().string()
      << "; keep a copy offline.\n";
  return command_line::kExitOk;
}

int printPublicKey(const command_line::Arguments& arguments, std::ostream& out) {
  out << readKeyFile(arguments.required("--private")).publicKey() << '\n';
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb keysVerb(std::ostream& out, std::ostream& err) {
  return {.name = "keys",
          .synopsis = "[--private FILE] [--in-checkout]",
          .summary = "make the pair of keys that releases are signed and checked with",
          .help =
              "Writes a new private key to FILE, karno-update.key by default, which only you can read and\n"
              "which is never overwritten. Prints the public key, for SUPublicEDKey in the bundle's\n"
              "Info.plist. Keep the private key where nobody else can read it and where it does not get\n"
              "lost: launchers take no update that another key has signed. Says on standard error where the\n"
              "file is.\n"
              "\n"
              "  --private FILE  the new file\n"
              "  --in-checkout   accept a place inside a git checkout\n",
          .options = {"--private"},
          .flags = {"--in-checkout"},
          .run = [&out, &err](const auto& arguments) { return makeKeys(arguments, out, err); }};
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
