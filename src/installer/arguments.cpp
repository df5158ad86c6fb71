#include "installer/arguments.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

#include "command_line/arguments.h"

namespace karno::installer {
namespace {

using command_line::Arguments;
using command_line::UsageError;

// As file sizes and process identifiers are counted.
template <class Number>
Number numberOf(const Arguments& arguments, std::string_view option, Number least) {
  const std::string text = arguments.required(option);
  const auto number = command_line::numberIn(text);
  const auto most = static_cast<std::uint64_t>(std::numeric_limits<Number>::max());
  if (!number || *number > most || *number < static_cast<std::uint64_t>(least))
    throw UsageError(fmt::format("no number for {}: '{}'", option, text));
  return static_cast<Number>(*number);
}

UnpackRequest unpackRequest(const Arguments& arguments) {
  UnpackRequest request{.archive = arguments.required("--archive"),
                        .lengthInBytes = std::nullopt,
                        .signature = arguments.required("--signature"),
                        .publicKey = arguments.required("--public-key"),
                        .bundle = arguments.required("--bundle"),
                        .into = arguments.required("--into")};
  if (arguments.has("--length")) request.lengthInBytes = numberOf<std::int64_t>(arguments, "--length", 0);
  return request;
}

InstallRequest installRequest(const Arguments& arguments) {
  return {.newBundle = arguments.required("--new"),
          .bundle = arguments.required("--bundle"),
          .after = numberOf<pid_t>(arguments, "--after", 1)};
}

Aftermath aftermath(const Arguments& arguments) {
  const bool hasTouchfile = arguments.has("--touch-file");
  return {.relaunch = arguments.has("--relaunch"),
          .touchfile = hasTouchfile ? arguments.required("--touch-file") : std::string()};
}

}  // namespace

command_line::Verb unpackVerb(std::function<int(const UnpackRequest&)> unpack) {
  return {
      .name = "unpack",
      .synopsis =
          "--archive FILE [--length BYTES] --signature BASE64\n"
          "                              --public-key BASE64 --bundle CURRENT.app --into FOLDER",
      .summary = "check a signed archive and unpack it",
      .help =
          "Checks a signed archive (zip, or tar plain or packed by gzip, bzip2, xz or zstd) and unpacks it\n"
          "into an empty folder of mode 0700. Prints lines \"progress N TOTAL\", then \"ready PATH\" and\n"
          "exits with 0, or \"failed CODE TEXT\" and exits with 1:\n"
          "  2001  the archive has another length      3002  it holds no update of the bundle\n"
          "  3000  it cannot be unpacked               4006  it holds a version that is not newer\n"
          "  3001  its signature is not good\n",
      .options = {"--archive", "--length", "--public-key", "--bundle", "--into"},
      .texts = {"--signature"},
      .run = [unpack = std::move(unpack)](const auto& arguments) {
        return unpack(unpackRequest(arguments));
      }};
}

command_line::Verb installVerb(std::function<int(const InstallRequest&, const Aftermath&)> install) {
  return {
      .name = "install",
      .synopsis = "--new NEW.app --bundle BUNDLE.app --after PID [--touch-file FILE] [--relaunch]",
      .summary = "put a new bundle where the present one is",
      .help =
          "Waits until the process PID has ended, 600 seconds at most, and puts the new bundle where the\n"
          "present one is. At any instant one of the two is there, and whole. When it fails the touch file\n"
          "goes, and why it failed is left beside the bundle for the launcher's next start.\n",
      .options = {"--new", "--bundle", "--after", "--touch-file"},
      .flags = {"--relaunch"},
      .run = [install = std::move(install)](const auto& arguments) {
        return install(installRequest(arguments), aftermath(arguments));
      }};
}

}  // namespace karno::installer
