#include "settings/connectivity.h"

#include "agent/shell.h"

namespace settings {
namespace {

bool succeeds(const std::string &command) {
  return agent::runShellCommand(agent::kSh, command, agent::ShellMode::Status).status == 0;
}

}  // namespace

bool answersPing(const std::string &server) {
  return succeeds("/sbin/ping -c 1 \"" + server + "\"");
}

bool acceptsConnection(const std::string &server, const std::string &port) {
  return succeeds("/usr/bin/nc -vz \"" + server + "\" " + port);
}

}  // namespace settings
