#include "karno-appcast/keys/key_file.h"

#include <fcntl.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "karno-appcast/failure.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::appcast {
namespace {

using platform::ScopedDescriptor;

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

// 0 or the error number.
int write(int descriptor, std::string text) {
  text += '\n';
  const int error = platform::writeAll(descriptor, text);
  sodium_memzero(text.data(), text.size());
  if (error != 0) return error;
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

// A key that cannot check what it signs itself would be noticed by every launcher, and by nobody before.
void requireThatItSigns(const PrivateKey& key) {
  constexpr std::array<unsigned char, 5> kProbe{'p', 'r', 'o', 'b', 'e'};
  if (!isSignatureOf(kProbe, key.signatureOf(kProbe), key.publicKey()))
    throw Failure("what this key signs does not fit its public key");
}

}  // namespace

void createKeyFile(const std::string& path, const PrivateKey& key) {
  const ScopedDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
  if (!file.isOpen() && errno == EEXIST)
    throw Failure(path + " is there already; a private key is never overwritten");
  if (!file.isOpen()) throw systemFailure("cannot make " + path, errno);
  if (const int error = write(file.get(), key.text())) {
    ::unlink(path.c_str());
    throw systemFailure("cannot write " + path, error);
  }
}

PrivateKey readKeyFile(const std::string& path) {
  auto file = platform::readWholeFile(path);
  if (!file) throw systemFailure("cannot read " + path, static_cast<int>(file.error().code()));
  std::string& text = file.value().bytes;
  if ((file.value().status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
    throw Failure(path + " can be read by others than its owner; chmod 600 it");
  const std::size_t end = text.find_last_not_of(" \t\r\n");
  try {
    PrivateKey key = PrivateKey::fromText(std::string_view(text).substr(0, end + 1));
    sodium_memzero(text.data(), text.size());
    requireThatItSigns(key);
    return key;
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  }
}

}  // namespace karno::appcast
