#pragma once

#include <optional>
#include <string>

namespace agent {

/// Absolute path of the agent's preferences file in the Library folder of the local domain
/// ("/Library/Preferences/ZentavoAgent/server.plist" on a standard system), the same in every
/// edition: required. Nothing when the platform reports no such folder. The file need not exist.
std::optional<std::string> serverPlistPath();

}  // namespace agent
