#include "agent/settings_reset.h"

#include <string>
#include <tuple>

#include "agent/command_prefix.h"
#include "agent/installation.h"
#include "agent/shell.h"

namespace agent {

void deleteSettings(std::string_view oem, const Credentials &administrator,
                    std::string_view filename) {
  // Two spaces before the path, which is not quoted: required.
  const std::string command = "/bin/rm  " + settingsFile(oem, filename);
  std::ignore = runShellCommand(kBash, asRoot(administrator, command), ShellMode::WaitOnly);
}

void generateConfigFile(std::string_view oem) {
  const std::string command = "echo -n > " + settingsFile(oem, kDaemonSettings) + "; " +
                              daemonExecutable(oem) + " daemon exit";
  std::ignore = runShellCommand(kBash, command, ShellMode::WaitOnly);
}

}  // namespace agent
