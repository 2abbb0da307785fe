#include "agent/settings_reset.h"

#include <string>
#include <tuple>

#include "agent/command_prefix.h"
#include "agent/shell.h"
#include "app/edition.h"

namespace agent {
namespace {

std::string systemAgentPath(std::string_view oem, std::string_view name) {
  return std::string(app::editionOrDefault(oem).installFolder) + "/SystemAgent/" +
         std::string(name);
}

}  // namespace

void deleteSettings(std::string_view oem, const Credentials &administrator,
                    std::string_view filename) {
  // Two spaces before the path, which is not quoted: required.
  const std::string command =
      "/bin/rm  " + systemAgentPath(oem, "settings/") + std::string(filename);
  std::ignore = runShellCommand(kBash, asRoot(administrator, command), ShellMode::WaitOnly);
}

void generateConfigFile(std::string_view oem) {
  const std::string command = "echo -n > " + systemAgentPath(oem, "settings/daemon.settings.xml") +
                              "; " + systemAgentPath(oem, "SystemAgentDaemon") + " daemon exit";
  std::ignore = runShellCommand(kBash, command, ShellMode::WaitOnly);
}

}  // namespace agent
