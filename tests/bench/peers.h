#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace karno::bench {

// A log that the wrapper log stands beside: the same text to standard error and to a file, flushed per line.
class PeerLog {
 public:
  virtual ~PeerLog() = default;
  virtual void logInfo(std::string_view message) = 0;

  // Brings a writer that looks for lines from time to time to the moment after a look, so that no run is
  // disturbed by it earlier than another.
  virtual void settle() = 0;

  // Returns when `lines()` has come to this, after a minute at the latest. The last call.
  virtual void drain(std::uint64_t lines) = 0;

  // Those in the file since this was made, and those that a rotation has cost.
  virtual std::uint64_t lines() const = 0;
};

// Looks every millisecond, for a minute at most.
void waitUntil(const std::function<bool()>& isSo);

// spdlog's asynchronous logger: one writer thread, its default queue, blocking when the queue is full.
std::unique_ptr<PeerLog> makeSpdlogAsync(const std::filesystem::path& file);

// The least a log of this kind can do on the caller's thread: the date of the second from a cache, one write
// to standard error, one locked append; a thread polls and writes the lines to the file.
std::unique_ptr<PeerLog> makeFloor(const std::filesystem::path& file);

// The wrapper log itself behind the same face.
std::unique_ptr<PeerLog> makeKarnoLog();

}  // namespace karno::bench
