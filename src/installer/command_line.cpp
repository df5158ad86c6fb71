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
#include "installer/bundle_facts.h"
#include "installer/interruption.h"
#include "installer/progress.h"
#include "installer/tree_removal.h"
#include "platform/linux/files/install_verdict.h"
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

std::string versionOf(const std::string& bundle) {
  const auto facts = readBundleFacts(bundle);
  return facts ? oneLine(facts.value().version) : std::string();
}

int install(const InstallRequest& request, const Aftermath& aftermath) {
  // It outlives the session that it was started in. A leader of a process group cannot leave its session, but
  // is spared the signal of its end.
  followSignals(SIG_IGN);
  ::setsid();
  // Should this process be killed, or the machine go down, that is what is found.
  platform::InstallVerdictFile verdict(request.bundle, versionOf(request.newBundle));
  verdict.write("The installation was cut off.");
  const InstallEnd end = installUpdate(request);
  if (!end.complaint.empty()) complain(end.complaint);
  if (end.isInstalled) {
    verdict.remove();
    return aftermath.relaunch ? openAgain(request.bundle) : kExitOk;
  }
  if (!aftermath.touchfile.empty()) ::unlink(aftermath.touchfile.c_str());
  if (const int error = verdict.write(end.complaint))
    complain("That cannot be left for the next start: " + std::generic_category().message(error) + ".");
  return kExitFailed;
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
