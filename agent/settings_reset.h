#pragma once

#include <string_view>

#include "agent/accounts.h"

/// The agent's own settings files, in the edition's install folder. `oem` names the edition; an
/// unknown value means the first edition's folder. Required: the operations do not report a result.
/// What their commands print goes to the program's own streams.
namespace agent {

/// The daemon's settings file.
inline constexpr std::string_view kDaemonSettings = "daemon.settings.xml";

/// Deletes one settings file (a bare name) as root.
void deleteSettings(std::string_view oem, const Credentials &administrator,
                    std::string_view filename);

/// Empties the daemon's settings file and has the daemon's executable regenerate it, both with the
/// program's own rights. Returns when that run has ended.
void generateConfigFile(std::string_view oem);

}  // namespace agent
