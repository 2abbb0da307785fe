#include "agent/launchd_jobs.h"

#include "agent/shell.h"
#include "app/console.h"

namespace agent {
namespace {

std::string capture(const std::string &command) {
  return runShellCommand(kBash, command, ShellMode::Capture).text;
}

bool succeeds(const std::string &command) {
  return runShellCommand(kBash, command, ShellMode::Status).status == 0;
}

}  // namespace

std::string getloggedInUserCommand() {
  return "loggedInUser=$(stat -f%Su /dev/console 2> /dev/null); echo $loggedInUser";
}

std::string getloggedInUIDCommand(const std::string &user) {
  return "loggedInUID=$(id -u \"" + user + "\"); echo $loggedInUID";
}

std::string checkGlobalAgentCommand(const ConsoleUser &console) {
  return asConsoleUser(console, "/bin/launchctl list com.quorvix.SystemAgentUX  &> /dev/null");
}

std::string stopGlobalAgentCommand(const ConsoleUser &console) {
  return asConsoleUser(
      console, "/bin/launchctl unload -w /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist");
}

std::string startGlobalAgentCommand(const ConsoleUser &console) {
  return asConsoleUser(
      console, "/bin/launchctl load -w /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist");
}

std::string checkGlobalDaemonCommand(const Credentials &administrator) {
  return asRoot(administrator, "/bin/launchctl list com.quorvix.SystemAgentDaemon &> /dev/null");
}

std::string stopGlobalDaemonCommand(const Credentials &administrator) {
  return asRoot(
      administrator,
      "/bin/launchctl unload -w /Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist");
}

std::string startGlobalDaemonCommand(const Credentials &administrator) {
  return asRoot(
      administrator,
      "/bin/launchctl load -w /Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist");
}

std::string getloggedInUser() { return capture(getloggedInUserCommand()); }

std::string getloggedInUID(const std::string &user) { return capture(getloggedInUIDCommand(user)); }

bool checkGlobalAgent(const ConsoleUser &console) {
  return succeeds(checkGlobalAgentCommand(console));
}

bool checkGlobalDaemon(const Credentials &administrator) {
  return succeeds(checkGlobalDaemonCommand(administrator));
}

// The remarks differ in grammar between the jobs; whoever reads the output knows them as they are.

void stopGlobalAgent(const ConsoleUser &console) {
  app::printLine(succeeds(stopGlobalAgentCommand(console)) ? "Global Agent stop successfully."
                                                           : "Global Agent failed to stop.");
}

void startGlobalAgent(const ConsoleUser &console, bool waitexit) {
  const std::string command = startGlobalAgentCommand(console);
  if (!waitexit) {
    runShellCommand(kBash, command, ShellMode::LaunchOnly);
    app::printLine("Global Agent started.");
    return;
  }
  app::printLine(succeeds(command) ? "Global Agent starts successfully."
                                   : "Global Agent failed to start.");
}

void stopGlobalDaemon(const Credentials &administrator) {
  app::printLine(succeeds(stopGlobalDaemonCommand(administrator))
                     ? "Global Daemon stops successfully."
                     : "Global Daemon failed to stop.");
}

void startGlobalDaemon(const Credentials &administrator) {
  app::printLine(succeeds(startGlobalDaemonCommand(administrator))
                     ? "Global Daemon starts successfully."
                     : "Global Daemon failed to start.");
}

}  // namespace agent
