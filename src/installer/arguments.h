#pragma once
#include <span>
#include <string>
#include <variant>

#include "installer/install.h"
#include "installer/unpack.h"

namespace karno::installer {

struct InstallCommand {
  InstallRequest request;
  bool relaunch = false;
};

struct HelpCommand {};
struct VersionCommand {};

struct UsageError {
  std::string text;
};

using Command = std::variant<UsageError, HelpCommand, VersionCommand, UnpackRequest, InstallCommand>;

// What the words after the program's name ask for. Options come in any order, each at most once.
Command parseArguments(std::span<const std::string> arguments);

// How the program is used, several lines.
std::string usageText();

}  // namespace karno::installer
