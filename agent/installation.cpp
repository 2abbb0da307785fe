#include "agent/installation.h"

#include <unistd.h>

#include "app/edition.h"

namespace agent {
namespace {

std::string systemAgentPath(std::string_view oem, std::string_view name) {
  return std::string(app::editionOrDefault(oem).installFolder) + "/SystemAgent/" +
         std::string(name);
}

}  // namespace

std::string daemonExecutable(std::string_view oem) {
  return systemAgentPath(oem, "SystemAgentDaemon");
}

std::string settingsFile(std::string_view oem, std::string_view filename) {
  return systemAgentPath(oem, "settings/") + std::string(filename);
}

std::optional<std::string> missingAgentFile(std::string_view oem) {
  for (const std::string &file : {daemonExecutable(oem), std::string(kDaemonJobFile)}) {
    if (::access(file.c_str(), F_OK) != 0) return file;
  }
  return std::nullopt;
}

}  // namespace agent
