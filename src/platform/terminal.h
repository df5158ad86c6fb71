#pragma once

namespace karno::platform {

// For command-line tools. Safe from any thread.

// Whether this process was started with a standard output. To be asked before nativePlatform(), which puts
// something that takes everything into the place of a missing one.
bool standardOutputIsOpen();

// Whether the standard output is a terminal.
bool standardOutputIsTerminal();

// Whether the standard output is a terminal whose user wants colours: neither NO_COLOR nor a "dumb" TERM is
// in the environment.
bool standardOutputWantsColours();

// Whether the user's locale takes more than ASCII.
bool localeIsUTF8();

// Lets this process end by SIGPIPE when whoever reads its output has gone, as other tools do. The platform
// ignores that signal for the launcher's sake, so this is called after nativePlatform().
void endWithTheReaderOfTheOutput();

}  // namespace karno::platform
