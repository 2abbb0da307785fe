#include "doubles/fake_server_plist_path.h"

#include <utility>

#include "agent/server_plist_path.h"

namespace doubles {
namespace {

std::optional<std::string> thePath;

}  // namespace

void setServerPlistPath(std::optional<std::string> path) { thePath = std::move(path); }

}  // namespace doubles

namespace agent {

std::optional<std::string> serverPlistPath() { return doubles::thePath; }

}  // namespace agent
