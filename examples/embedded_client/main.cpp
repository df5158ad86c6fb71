#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "embedded_client/arguments.h"
#include "embedded_client/client.h"
#include "embedded_client/script.h"
#include "platform/application.h"

namespace {

constexpr int kExitUsage = 64;
constexpr const char* kScriptVariable = "KARNO_CLIENT_SCRIPT";

int usageError(const std::string& text) {
  std::cerr << "embedded client: " << text << '\n';
  return kExitUsage;
}

int run(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const auto parent = karno::client::parentFromArguments(arguments);
  if (!parent) {
    return usageError(
        "the launcher starts me with one argument, \"--parent PID\", a single word with a blank in it");
  }
  const char* const text = std::getenv(kScriptVariable);
  auto parsed = karno::client::parseScript(text != nullptr ? text : "");
  if (const auto* error = std::get_if<std::string>(&parsed)) {
    return usageError(std::string(kScriptVariable) + ": " + *error);
  }
  auto script = std::move(*std::get_if<std::vector<karno::client::ScriptStep>>(&parsed));
  return karno::platform::applicationMain(
      argc, argv, [&] { return std::make_shared<karno::client::Client>(*parent, std::move(script)); });
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "embedded client: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
