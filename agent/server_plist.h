#pragma once

#include <string>
#include <system_error>

/// The agent's preferences file, server.plist. The program writes it itself, with its own rights.
namespace agent {

/// What the agent reads at its next start. The values are inserted as they are, without XML
/// escaping, so a value with "&" or "<" gives a file that is not a valid property list: required.
struct ServerPlist {
  std::string server;
  std::string port;
  std::string lang;  ///< two-letter code
  bool profile = false;
};

/// The exact text of the file: fourteen lines. The indentation from the second line on and the
/// missing newline after the last are required.
std::string serverPlistText(const ServerPlist &values);

/// Replaces server.plist atomically; its folder must exist. A failure is written to the error log
/// and returned. Does nothing when the platform reports no local Library folder.
std::error_code generateServerPlistFile(const ServerPlist &values);

}  // namespace agent
