#include "doubles/scratch_library.h"

#include <utility>

#include "agent/local_library.h"

namespace doubles {
namespace {

std::optional<std::string> thePath;

}  // namespace

void setServerPlistPath(std::optional<std::string> path) { thePath = std::move(path); }

}  // namespace doubles

namespace agent {

std::optional<std::string> serverPlistPath() { return doubles::thePath; }

}  // namespace agent
