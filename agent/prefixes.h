#pragma once

#include <string>
#include <string_view>

namespace agent {

/// The administrator who logged in, as typed. Not the console user.
struct Credentials {
  std::string user;
  std::string pwd;
};

/// The user who owns the console, whose launchd domain holds the per-user agent job. Both as text,
/// without line ends. Not the administrator.
struct ConsoleUser {
  std::string user;
  std::string uid;
};

// Values go into the command lines below as they are, unescaped, and the shell reads them as it
// would typed text: intended. A quote, dollar sign, backquote or backslash in a name or password
// makes the command fail.

/// Command line that runs `command` as root: /bin/echo feeds the password to `sudo -S`, which runs
/// a second sudo as that administrator. The password is in the shell's arguments meanwhile.
std::string asRoot(const Credentials &administrator, std::string_view command);

/// Command line that runs `command` as that user in that user's own launchd domain; no password.
std::string asConsoleUser(const ConsoleUser &console, std::string_view command);

}  // namespace agent
