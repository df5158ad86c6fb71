#include "installer/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <map>
#include <optional>
#include <string_view>

namespace karno::installer {
namespace {

constexpr std::int64_t kGiveUpSecondsMax = 7 * 24 * 60 * 60;

struct OptionNames {
  std::initializer_list<std::string_view> required;
  std::initializer_list<std::string_view> optional;
  std::string_view flag;  // takes no value; empty: there is none
};

// The options of one command, each with its value.
class Options {
 public:
  Options(std::span<const std::string> words, const OptionNames& names) { read(words, names); }

  const std::string& error() const { return error_; }
  bool has(std::string_view name) const { return values_.find(name) != values_.end(); }
  const std::string& operator[](std::string_view name) const { return values_.find(name)->second; }

  // Within the bounds; else nothing, and an error.
  std::optional<std::int64_t> number(std::string_view name, std::int64_t least, std::int64_t most) {
    const std::string& text = (*this)[name];
    std::int64_t value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem == std::errc() && end == text.data() + text.size() && value >= least && value <= most)
      return value;
    fail("no number for " + std::string(name) + ": '" + text + "'");
    return std::nullopt;
  }

 private:
  void read(std::span<const std::string> words, const OptionNames& names) {
    while (!words.empty() && error_.empty()) {
      const std::string& name = words.front();
      const bool isFlag = !names.flag.empty() && name == names.flag;
      words = words.subspan(1);
      if (!isFlag && !isIn(names.required, name) && !isIn(names.optional, name)) {
        fail("unknown option '" + name + "'");
      } else if (!isFlag && words.empty()) {
        fail(name + " needs a value");
      } else if (!values_.emplace(name, isFlag ? "" : words.front()).second) {
        fail(name + " is given twice");
      } else if (!isFlag) {
        words = words.subspan(1);
      }
    }
    for (const std::string_view name : names.required) {
      if (!has(name)) fail(std::string(name) + " is missing");
    }
  }

  static bool isIn(std::initializer_list<std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }

  void fail(std::string text) {
    if (error_.empty()) error_ = std::move(text);
  }

  std::map<std::string, std::string, std::less<>> values_;
  std::string error_;
};

Command parseUnpack(std::span<const std::string> words) {
  Options options(words, {.required = {"--archive", "--signature", "--public-key", "--bundle", "--into"},
                          .optional = {"--length"},
                          .flag = ""});
  if (!options.error().empty()) return UsageError{options.error()};
  UnpackRequest request{.archive = options["--archive"],
                        .lengthInBytes = std::nullopt,
                        .signature = options["--signature"],
                        .publicKey = options["--public-key"],
                        .bundle = options["--bundle"],
                        .into = options["--into"]};
  if (options.has("--length")) {
    const auto length = options.number("--length", 0, std::numeric_limits<std::int64_t>::max());
    if (!length) return UsageError{options.error()};
    request.lengthInBytes = static_cast<std::uint64_t>(*length);
  }
  return request;
}

Command parseInstall(std::span<const std::string> words) {
  Options options(
      words, {.required = {"--new", "--bundle", "--after"}, .optional = {"--give-up"}, .flag = "--relaunch"});
  if (!options.error().empty()) return UsageError{options.error()};
  const auto after = options.number("--after", 1, std::numeric_limits<pid_t>::max());
  if (!after) return UsageError{options.error()};
  InstallCommand command{.request = {.newBundle = options["--new"],
                                     .bundle = options["--bundle"],
                                     .after = static_cast<pid_t>(*after)},
                         .relaunch = options.has("--relaunch")};
  if (options.has("--give-up")) {
    const auto seconds = options.number("--give-up", 0, kGiveUpSecondsMax);
    if (!seconds) return UsageError{options.error()};
    command.request.giveUpAfter = std::chrono::seconds(*seconds);
  }
  return command;
}

}  // namespace

Command parseArguments(std::span<const std::string> arguments) {
  if (arguments.empty()) return UsageError{"no command given"};
  const std::string& first = arguments.front();
  const auto rest = arguments.subspan(1);
  if (first == "unpack") return parseUnpack(rest);
  if (first == "install") return parseInstall(rest);
  if (first != "--help" && first != "--version") return UsageError{"unknown command '" + first + "'"};
  if (!rest.empty()) return UsageError{first + " stands alone"};
  if (first == "--help") return HelpCommand{};
  return VersionCommand{};
}

std::string usageText() {
  return "usage: karno-installer unpack --archive FILE [--length BYTES] --signature BASE64\n"
         "                              --public-key BASE64 --bundle CURRENT.app --into FOLDER\n"
         "       karno-installer install --new NEW.app --bundle BUNDLE.app --after PID\n"
         "                              [--give-up SECONDS] [--relaunch]\n"
         "       karno-installer --help | --version\n"
         "\n"
         "unpack checks a signed archive (zip, or tar plain or packed by gzip, bzip2, xz or zstd) and "
         "unpacks\n"
         "it into an empty folder of mode 0700. It prints lines \"progress N TOTAL\", then \"ready PATH\" "
         "and\n"
         "exits with 0, or \"failed CODE TEXT\" and exits with 1:\n"
         "  2001  the archive has another length      3002  it holds no update of the bundle\n"
         "  3000  it cannot be unpacked               4006  it holds a version that is not newer\n"
         "  3001  its signature is not good\n"
         "\n"
         "install waits until the process PID has ended, 600 seconds at most unless told otherwise, and "
         "puts\n"
         "the new bundle where the present one is. At any instant one of the two is there, and whole.\n";
}

}  // namespace karno::installer
