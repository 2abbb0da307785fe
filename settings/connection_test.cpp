#include "settings/connection_test.h"

#include "agent/shell.h"

namespace settings {

std::string pingCommand(const std::string &server) { return "/sbin/ping -c 1 \"" + server + "\""; }

std::string portTestCommand(const std::string &server, const std::string &port) {
  return "/usr/bin/nc -vz \"" + server + "\" " + port;
}

bool isReachable(const std::string &command) {
  return agent::runShellCommand(agent::kSh, command, agent::ShellMode::Status).status == 0;
}

}  // namespace settings
