#pragma once

#include <string>
#include <string_view>

#include "agent/accounts.h"

/// Command lines that run another command as somebody else. Values are inserted as they are,
/// unescaped, and the shell reads them as it would typed text. Required: a quote, dollar sign,
/// backquote or backslash in a name or password makes the command fail.
namespace agent {

/// Runs `command` as root: /bin/echo feeds the password to `sudo -S`, which runs a second sudo as
/// that administrator. The password is in the shell's arguments while the command runs.
std::string asRoot(const Credentials &administrator, std::string_view command);

/// Runs `command` as that user in that user's own launchd domain; no password.
std::string asConsoleUser(const ConsoleUser &console, std::string_view command);

}  // namespace agent
