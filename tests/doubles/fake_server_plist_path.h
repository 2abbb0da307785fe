#pragma once

#include <optional>
#include <string>

/// Replaces the local Library folder: server.plist is where a test wants it.
namespace doubles {

/// Without a path the platform reports no local Library folder.
void setServerPlistPath(std::optional<std::string> path);

}  // namespace doubles
