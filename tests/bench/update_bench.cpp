#include <benchmark/benchmark.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "command.h"
#include "comparison.h"
#include "load.h"
#include "measurement.h"
#include "update_files.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr auto kSampleInterval = std::chrono::milliseconds(2);

int updateTurns() { return amount(9, 1); }

std::vector<std::string> ours(const UpdateFiles& files, const fs::path& archive, const fs::path& into) {
  return {builtBundle() / "Contents/Helpers/karno-installer",
          "unpack",
          "--archive",
          archive,
          "--length",
          std::to_string(fs::file_size(archive)),
          "--signature",
          files.signatureOf(archive),
          "--public-key",
          files.publicKey(),
          "--bundle",
          files.present(),
          "--into",
          into};
}

// The same work by the commands that are there for it, but that nothing need be on the disk in the end.
std::vector<std::string> beside(const UpdateFiles& files, const fs::path& archive, const fs::path& into) {
  const bool isZip = archive.extension() == ".zip";
  const std::string unpack = isZip ? "unzip -q '" + archive.string() + "' -d '" + into.string() + "'"
                                   : "tar -xzf '" + archive.string() + "' -C '" + into.string() + "'";
  return {"sh", "-c",
          "openssl pkeyutl -verify -rawin -pubin -inkey '" + files.publicKeyFile().string() + "' -sigfile '" +
              files.signatureFile(archive).string() + "' -in '" + archive.string() + "' && " + unpack};
}

double anonymousMegabytes(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  std::string word;
  double kilobytes = 0;
  while (status >> word) {
    if (word == "RssAnon:") status >> kilobytes;
  }
  return kilobytes / 1024;
}

// The most that was seen while the command ran; negative when it failed.
double peakMegabytesOf(const std::vector<std::string>& command) {
  const pid_t process = startCommand(command);
  if (process < 0) return -1;
  double peak = 0;
  siginfo_t end = {};
  while (end.si_pid == 0) {
    peak = std::max(peak, anonymousMegabytes(process));
    std::this_thread::sleep_for(kSampleInterval);
    waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOHANG | WNOWAIT);
  }
  return exitStatusOf(process) == 0 ? peak : -1;
}

double bytesOfFilesIn(const fs::path& folder) {
  std::uintmax_t bytes = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) bytes += entry.file_size();
  }
  return static_cast<double>(bytes);
}

using MakeCommand = std::vector<std::string>(const UpdateFiles&, const fs::path&, const fs::path&);

// One side of a comparison: the time of each turn, and what lay in the folder after the last.
struct UpdateSide {
  MakeCommand* command;
  std::vector<double> seconds;
  double bytes = 0;

  bool takeTurn(const UpdateFiles& files, const fs::path& archive) {
    const fs::path into = files.freshFolder();
    seconds.push_back(secondsOfCommand(command(files, archive, into)));
    bytes = bytesOfFilesIn(into);
    return seconds.back() >= 0;
  }
};

// Both take turns within one run, since a busy machine changes its pace from one run to the next.
void unpack(benchmark::State& state, fs::path (UpdateFiles::*archive)() const) {
  const UpdateFiles& files = UpdateFiles::made();
  const fs::path path = (files.*archive)();
  UpdateSide our{.command = ours, .seconds = {}};
  UpdateSide other{.command = beside, .seconds = {}};
  for (auto _ : state) {
    for (int turn = 0; turn < updateTurns(); ++turn) {
      if (!other.takeTurn(files, path) || !our.takeTurn(files, path)) {
        return state.SkipWithError("a command failed");
      }
    }
    const double peak = peakMegabytesOf(ours(files, path, files.freshFolder()));
    if (peak < 0) return state.SkipWithError("the installer failed");
    state.counters["anonymous_megabytes"] = peak;
  }
  state.counters["seconds"] = medianOf(our.seconds);
  state.counters["beside_seconds"] = medianOf(other.seconds);
  state.counters["bytes"] = our.bytes;
  state.counters["beside_bytes"] = other.bytes;
  state.counters["one_megabyte"] = 1;
  state.counters["archive_megabytes"] = static_cast<double>(fs::file_size(path)) / 1e6;
}

void addBenchmark(const std::string& name, fs::path (UpdateFiles::*archive)() const, const std::string& kind,
                  const std::string& commands) {
  measure(name, 1, [archive](benchmark::State& state) { unpack(state, archive); });
  compare({.name = "update verify and unpack 100 MB " + kind + ", seconds, beside " + commands,
           .ours = {name, "seconds", "bytes"},
           .beside = {name, "beside_seconds", "beside_bytes"},
           .bound = 0.6});
  // The launcher needs no more of it while the installer runs: what it has beside is what the installer
  // takes.
  compare({.name = "anonymous memory while unpacking above idle, MB, " + kind,
           .ours = {name, "anonymous_megabytes", "bytes"},
           .beside = {name, "one_megabyte", ""},
           .bound = 32});
}

const Registration ofUpdates([] {
  addBenchmark("update_zip", &UpdateFiles::zip, "zip", "openssl and unzip");
  addBenchmark("update_tar_gz", &UpdateFiles::tarGzip, "tar.gz", "openssl and tar");
});

}  // namespace
}  // namespace karno::bench
