#pragma once
#include <string>

#include "karno-appcast/keys/ed25519.h"

namespace karno::appcast {

// Writes the key to a new file that only its owner can read. A Failure when something has that name already:
// a key that is overwritten is lost, and with it every user of the releases that it signed.
void createKeyFile(const std::string& path, const PrivateKey& key);

// A Failure as well when others than the owner may read the file.
PrivateKey readKeyFile(const std::string& path);

}  // namespace karno::appcast
