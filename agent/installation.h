#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Where the agent is installed. `oem` names the edition; an unknown value means the first
/// edition's folder.
namespace agent {

/// Job file of the system-wide daemon, the same in every edition.
inline constexpr std::string_view kDaemonJobFile =
    "/Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist";

/// Path of the daemon's executable.
std::string daemonExecutable(std::string_view oem);

/// Path of one of the agent's settings files (a bare name).
std::string settingsFile(std::string_view oem, std::string_view filename);

/// The daemon's executable or its job file, whichever is missing; nothing when the agent is
/// installed.
std::optional<std::string> missingAgentFile(std::string_view oem);

}  // namespace agent
