#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "comparison.h"
#include "update_files.h"
#include "workplace.h"

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kTurns = 5;
constexpr auto kSampleInterval = std::chrono::milliseconds(2);

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

pid_t start(std::vector<std::string> words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int error = posix_spawnp(&process, pointers[0], &files, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? process : -1;
}

bool endedWell(pid_t process) {
  int status = 0;
  return process > 0 && waitpid(process, &status, 0) == process && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

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

// Negative when it failed.
double secondsOf(const std::vector<std::string>& command) {
  const auto before = std::chrono::steady_clock::now();
  if (!endedWell(start(command))) return -1;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
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
  const pid_t process = start(command);
  if (process < 0) return -1;
  double peak = 0;
  siginfo_t end = {};
  while (end.si_pid == 0) {
    peak = std::max(peak, anonymousMegabytes(process));
    std::this_thread::sleep_for(kSampleInterval);
    waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOHANG | WNOWAIT);
  }
  return endedWell(process) ? peak : -1;
}

// Both take turns within one run, since a busy machine changes its pace from one run to the next.
void unpack(benchmark::State& state, fs::path (UpdateFiles::*archive)() const) {
  const UpdateFiles& files = UpdateFiles::made();
  const fs::path path = (files.*archive)();
  std::vector<double> oursSeconds;
  std::vector<double> besideSeconds;
  for (auto _ : state) {
    for (int turn = 0; turn < kTurns; ++turn) {
      besideSeconds.push_back(secondsOf(beside(files, path, files.freshFolder())));
      oursSeconds.push_back(secondsOf(ours(files, path, files.freshFolder())));
      if (besideSeconds.back() < 0 || oursSeconds.back() < 0) return state.SkipWithError("a command failed");
    }
    const double peak = peakMegabytesOf(ours(files, path, files.freshFolder()));
    if (peak < 0) return state.SkipWithError("the installer failed");
    state.counters["anonymous_megabytes"] = peak;
  }
  state.counters["seconds"] = medianOf(oursSeconds);
  state.counters["beside_seconds"] = medianOf(besideSeconds);
  state.counters["one_megabyte"] = 1;
  state.counters["archive_megabytes"] = static_cast<double>(fs::file_size(path)) / 1e6;
}

void addRows(const std::string& benchmark, const std::string& archive, const std::string& commands) {
  compare({.name = "update verify and unpack 100 MB " + archive + ", seconds, beside " + commands,
           .ours = {benchmark, "seconds"},
           .beside = {benchmark, "beside_seconds"},
           .bound = 1.2});
  // The launcher needs no more of it while the installer runs: what it has beside is what the installer
  // takes.
  compare({.name = "anonymous memory while unpacking above idle, MB, " + archive,
           .ours = {benchmark, "anonymous_megabytes"},
           .beside = {benchmark, "one_megabyte"},
           .bound = 32});
}

const bool registered = [] {
  benchmark::RegisterBenchmark("update_zip",
                               [](benchmark::State& state) { unpack(state, &UpdateFiles::zip); })
      ->Iterations(1)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("update_tar_gz",
                               [](benchmark::State& state) { unpack(state, &UpdateFiles::tarGzip); })
      ->Iterations(1)
      ->Unit(benchmark::kMillisecond);
  addRows("update_zip", "zip", "openssl and unzip");
  addRows("update_tar_gz", "tar.gz", "openssl and tar");
  return true;
}();

}  // namespace
}  // namespace karno::bench
