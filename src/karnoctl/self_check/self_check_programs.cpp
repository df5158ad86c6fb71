#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include <algorithm>

namespace karno::karnoctl {
namespace {

bool isBuiltFor(const ProgramImage& image, const std::string& processor) {
  return std::ranges::find(image.slices, processor, &ProgramSlice::processor) != image.slices.end();
}

// A universal program is one for every Mac.
void checkProcessors(const CheckedBundle& bundle, const std::string& file, const ProgramImage& image,
                     std::string_view cost) {
  if (bundle.isForMacOS()) {
    for (const char* const wanted : {"x86_64", "arm64"}) {
      if (isBuiltFor(image, wanted)) continue;
      bundle.wrong(fmt::format("{} has no code for {}: {} on such a Mac.", file, wanted, cost));
    }
    return;
  }
  const std::string& own = bundle.ownProgram.slices.front().processor;
  if (isBuiltFor(image, own)) return;
  bundle.wrong(fmt::format("{} is built for {}, and this machine has {}: {}.", file,
                           image.slices.front().processor, own, cost));
}

void checkSignatures(const CheckedBundle& bundle, const std::string& file, const ProgramImage& image) {
  for (const ProgramSlice& slice : image.slices) {
    if (slice.isSigned) continue;
    bundle.wrong(
        fmt::format("{} is not signed (its code for {}): macOS may refuse it.", file, slice.processor));
  }
}

void checkImage(const CheckedBundle& bundle, const std::string& file, std::string_view cost) {
  const auto image = bundle.program(file);
  if (!image) {
    bundle.wrong(fmt::format("{} is no program ({}): {}.", file, reasonOf(image.error()), cost));
  } else if (const std::string& interpreter = image.value().interpreter; !interpreter.empty()) {
    if (bundle.runtime.isExecutable(interpreter)) return;
    bundle.wrong(fmt::format("{} is a script for {}, which is not here: {}.", file, interpreter, cost));
  } else if (image.value().system != bundle.ownProgram.system) {
    bundle.wrong(
        fmt::format("{} is a program for {}: {} here.", file, bundle.isForMacOS() ? "Linux" : "macOS", cost));
  } else {
    checkProcessors(bundle, file, image.value(), cost);
    if (bundle.isForMacOS()) checkSignatures(bundle, file, image.value());
  }
}

}  // namespace

void checkProgram(const CheckedBundle& bundle, const std::string& file, std::string_view cost) {
  if (!bundle.hasFile(file, cost)) return;
  ++bundle.findings.programs;
  if (!bundle.runtime.isExecutable(bundle.pathOf(file))) {
    bundle.wrong(fmt::format("{} may not be executed: {}.", file, cost));
  }
  checkImage(bundle, file, cost);
}

}  // namespace karno::karnoctl
