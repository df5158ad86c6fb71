#include "places.h"

namespace karno::test {
namespace {

std::filesystem::path ownFolder() { return std::filesystem::canonical("/proc/self/exe").parent_path(); }

}  // namespace

MachineTools builtTools() {
  return {.commands = std::filesystem::canonical(ownFolder() / KARNO_MACHINE_COMMANDS),
          .bundle = std::filesystem::canonical(ownFolder() / KARNO_STAGED_BUNDLE)};
}

std::filesystem::path postNotification() { return ownFolder() / "karno_post_notification"; }

std::filesystem::path childStorm() { return ownFolder() / "karno_child_storm"; }

std::filesystem::path stormClient() { return ownFolder() / "karno_storm_client"; }

std::filesystem::path restartBurst() { return ownFolder() / "karno_restart_burst"; }

std::filesystem::path briefClient() { return ownFolder() / "karno_brief_client"; }

std::filesystem::path webServerProgram() {
  return std::filesystem::canonical(ownFolder() / KARNO_WEB_SERVER);
}

std::filesystem::path makeReleaseProgram() {
  return std::filesystem::canonical(ownFolder() / KARNO_MAKE_RELEASE);
}

std::filesystem::path karnoAppcast() { return std::filesystem::canonical(ownFolder() / KARNO_APPCAST); }

std::filesystem::path releasingDocument() {
  return std::filesystem::canonical(ownFolder() / KARNO_RELEASING_DOCUMENT);
}

std::filesystem::path moveOnce() { return ownFolder() / "karno_move_once"; }

std::filesystem::path faultyDisk() { return ownFolder() / "libkarno_faulty_disk.so"; }

std::filesystem::path waitsOfAMac() { return ownFolder() / "libkarno_waits_of_a_mac.so"; }

std::filesystem::path oneFileClient(const std::string& language) {
  if (language == "cpp") return std::filesystem::canonical(ownFolder() / KARNO_ONE_FILE_CLIENT);
  const std::filesystem::path sources = std::filesystem::canonical(ownFolder() / KARNO_ONE_FILE_CLIENTS);
  return sources / (language == "python" ? "client.py" : "client.sh");
}

std::filesystem::path withDisplay() { return std::filesystem::canonical(ownFolder() / KARNO_WITH_DISPLAY); }

}  // namespace karno::test
