#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

#include "karnoctl/command_line.h"
#include "platform/private_file.h"
#include "platform/runtime_check.h"
#include "platform/terminal.h"

namespace {

using karno::platform::Platform;

Platform& installedPlatform(int argc, char** argv) {
  static Platform& platform = [argc, argv]() -> Platform& {
    Platform& native = karno::platform::nativePlatform(argc, argv);
    karno::platform::endWithTheReaderOfTheOutput();
    karno::platform::install(native);
    return native;
  }();
  return platform;
}

// Takes nothing: what is written for a standard output that is closed is lost, and that is an error.
class ClosedOutput final : public std::streambuf {};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  ClosedOutput closedOutput;
  std::ostream closed(&closedOutput);
  karno::karnoctl::Context context{
      .out = karno::platform::standardOutputIsOpen() ? std::cout : closed,
      .err = std::cerr,
      .platform = [argc, argv]() -> Platform& { return installedPlatform(argc, argv); },
      .runtimeCheck = karno::platform::nativeRuntimeCheck,
      .writePrivateFile = karno::platform::writePrivateFile,
      .outputIsTerminal = karno::platform::standardOutputIsTerminal(),
      .outputWantsColours = karno::platform::standardOutputWantsColours(),
      .outputIsUTF8 = karno::platform::localeIsUTF8()};
  return karno::karnoctl::run(arguments, KARNO_VERSION, context);
}
