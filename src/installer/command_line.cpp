#include "installer/command_line.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <system_error>

#include "command_line/program.h"
#include "installer/archive/archive_file.h"
#include "installer/arguments.h"
#include "installer/interruption.h"
#include "installer/progress.h"
#include "installer/tree_removal.h"
#include "platform/posix/files/whole_file.h"
#include "platform/system_path.h"

namespace karno::installer {
namespace {

using command_line::kExitFailed;
using command_line::kExitOk;

// Whether anybody reads it or not.
void complain(std::string_view text) {
  platform::writeAll(STDERR_FILENO, fmt::format("karno-installer: {}\n", text));
}

std::uint64_t sizeOf(const std::string& path) {
  const auto file = ArchiveFile::open(path);
  return file ? file.value().sizeInBytes() : 0;
}

int unpack(const UnpackRequest& request) {
  noteInterruptions();
  ProgressLines lines(STDOUT_FILENO, sizeOf(request.archive));
  const auto unpacked = unpackUpdate(request, lines);
  if (!unpacked) {
    const Failure& failure = unpacked.error();
    lines.say(fmt::format("failed {} {}", static_cast<int>(failure.code), failure.text));
    return kExitFailed;
  }
  if (lines.isWanted() && lines.say("ready " + unpacked.value())) return kExitOk;
  removeTree(unpacked.value());
  return kExitFailed;
}

// Signals that are ignored stay so in the program that comes next.
void followSignals(void (*handler)(int)) {
  for (const int number : {SIGHUP, SIGPIPE}) ::signal(number, handler);
}

int openAgain(const std::string& bundle) {
  std::string program = platform::systemPath("/usr/bin/open");
  std::string newInstance = "-n";
  std::string path = bundle;
  const std::array<char*, 4> words = {program.data(), newInstance.data(), path.data(), nullptr};
  followSignals(SIG_DFL);
  ::execv(program.c_str(), words.data());
  complain("The bundle could not be opened: " + std::generic_category().message(errno) + ".");
  return kExitFailed;
}

int install(const InstallRequest& request, bool relaunch) {
  // It outlives the session that it was started in. A leader of a process group cannot leave its session, but
  // is spared the signal of its end.
  followSignals(SIG_IGN);
  ::setsid();
  const InstallEnd end = installUpdate(request);
  if (!end.complaint.empty()) complain(end.complaint);
  if (!end.isInstalled) return kExitFailed;
  return relaunch ? openAgain(request.bundle) : kExitOk;
}

}  // namespace

int run(std::span<const std::string> arguments, std::string_view version) {
  const command_line::Program program{.name = "karno-installer",
                                      .version = version,
                                      .purpose = "Unpacks and installs updates of the launcher.",
                                      .exitStatuses = "0 done, 1 failed",
                                      .verbs = {unpackVerb(unpack), installVerb(install)}};
  return command_line::run(program, arguments, std::cout, std::cerr);
}

}  // namespace karno::installer
