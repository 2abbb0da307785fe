#pragma once

#include <string>
#include <string_view>

#include "agent/accounts.h"

/// Command lines that run another command as another user. Values are inserted as they are, without
/// escaping, so the shell interprets them: required. A quote, dollar sign, backquote or backslash
/// in a name or password makes the command fail.
namespace agent {

/// Runs `command` as root: /bin/echo feeds the password to `sudo -S`, which runs a second sudo as
/// that administrator. The password is in the shell's arguments while the command runs. Both are
/// required.
std::string asRoot(const Credentials &administrator, std::string_view command);

/// Runs `command` as that user in that user's own launchd domain, without a password.
std::string asConsoleUser(const ConsoleUser &console, std::string_view command);

}  // namespace agent
