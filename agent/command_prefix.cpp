#include "agent/command_prefix.h"

namespace agent {

std::string asRoot(const Credentials &administrator, std::string_view command) {
  return "/bin/echo \"" + administrator.pwd + "\" | /usr/bin/sudo -u \"" + administrator.user +
         "\" -S /usr/bin/sudo -S " + std::string(command);
}

std::string asConsoleUser(const ConsoleUser &console, std::string_view command) {
  return "/bin/launchctl asuser " + console.uid + " /usr/bin/sudo -u \"" + console.user + "\" " +
         std::string(command);
}

}  // namespace agent
