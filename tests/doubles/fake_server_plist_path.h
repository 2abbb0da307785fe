#pragma once

#include <optional>
#include <string>

/// Stands in for the local Library folder: server.plist is where a test wants it.
namespace doubles {

/// Nothing stands for a platform that reports no local Library folder.
void setServerPlistPath(std::optional<std::string> path);

}  // namespace doubles
