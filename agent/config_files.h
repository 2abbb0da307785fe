#pragma once

#include <string>
#include <string_view>

#include "agent/prefixes.h"

/// The agent's files: its preferences, written by the program itself, and its settings below the
/// edition's install folder, changed by commands. `oem` names the edition; an unknown one takes the
/// first edition's folder.
namespace agent {

/// What the agent reads at its next start. Inserted as they are: no XML escaping, so a value with
/// "&" or "<" gives a file that is no property list.
struct ServerPlist {
  std::string server;
  std::string port;
  std::string lang;  ///< two-letter code
  bool profile = false;
};

/// The exact text of server.plist: fourteen lines, no line end after the last.
std::string serverPlistText(const ServerPlist &values);

/// Replaces server.plist as a whole, with the program's own rights; the folder must exist. A
/// failure goes to the error log and nowhere else. Without a local Library folder nothing is done.
void generateServerPlistFile(const ServerPlist &values);

std::string deleteSettingsCommand(std::string_view oem, const Credentials &administrator,
                                  std::string_view filename);
std::string generateConfigFileCommand(std::string_view oem);

/// Deletes one settings file (a bare name) as root. Whether it worked is not looked at.
void deleteSettings(std::string_view oem, const Credentials &administrator,
                    std::string_view filename);

/// Empties the daemon's settings file and has the daemon's executable write it anew, with the
/// program's own rights. Returns when that run has ended; whether it worked is not looked at.
void generateConfigFile(std::string_view oem);

}  // namespace agent
