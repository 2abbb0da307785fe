#include "agent/launchd_jobs.h"

#include <string_view>
#include <tuple>

#include "agent/command_prefix.h"
#include "agent/installation.h"
#include "agent/shell.h"
#include "app/diagnostics.h"

namespace agent {
namespace {

// The same job files in every edition.
constexpr std::string_view kUnloadAgent =
    "/bin/launchctl unload -w /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist";
constexpr std::string_view kLoadAgent =
    "/bin/launchctl load -w /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist";
constexpr std::string_view kUnloadDaemon =
    "/bin/launchctl unload -w /Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist";
constexpr std::string_view kLoadDaemon =
    "/bin/launchctl load -w /Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist";

static_assert(kUnloadDaemon.ends_with(kDaemonJobFile) && kLoadDaemon.ends_with(kDaemonJobFile));

// The two spaces in the first command and the one in the second are required.
constexpr std::string_view kListAgent =
    "/bin/launchctl list com.quorvix.SystemAgentUX  &> /dev/null";
constexpr std::string_view kListDaemon =
    "/bin/launchctl list com.quorvix.SystemAgentDaemon &> /dev/null";

std::string capture(const std::string &command) {
  return runShellCommand(kBash, command, ShellMode::Capture).text;
}

bool succeeds(const std::string &command) {
  return runShellCommand(kBash, command, ShellMode::Status).status == 0;
}

}  // namespace

// Differs from the lookup of the administrator check (app/local_admin) only in discarding stat's
// messages. Both functions and both command lines are required.
std::string getloggedInUser() {
  return capture("loggedInUser=$(stat -f%Su /dev/console 2> /dev/null); echo $loggedInUser");
}

std::string getloggedInUID(const std::string &user) {
  return capture("loggedInUID=$(id -u \"" + user + "\"); echo $loggedInUID");
}

bool checkGlobalAgent(const ConsoleUser &console) {
  return succeeds(asConsoleUser(console, kListAgent));
}

bool checkGlobalDaemon(const Credentials &administrator) {
  return succeeds(asRoot(administrator, kListDaemon));
}

// The status messages differ in grammar between the jobs. Required: people and scripts match them.

void stopGlobalAgent(const ConsoleUser &console) {
  app::printLine(succeeds(asConsoleUser(console, kUnloadAgent)) ? "Global Agent stop successfully."
                                                                : "Global Agent failed to stop.");
}

void startGlobalAgent(const ConsoleUser &console, bool waitexit) {
  const std::string command = asConsoleUser(console, kLoadAgent);
  if (!waitexit) {
    std::ignore = runShellCommand(kBash, command, ShellMode::LaunchOnly);
    app::printLine("Global Agent started.");
    return;
  }
  app::printLine(succeeds(command) ? "Global Agent starts successfully."
                                   : "Global Agent failed to start.");
}

void stopGlobalDaemon(const Credentials &administrator) {
  app::printLine(succeeds(asRoot(administrator, kUnloadDaemon))
                     ? "Global Daemon stops successfully."
                     : "Global Daemon failed to stop.");
}

void startGlobalDaemon(const Credentials &administrator) {
  app::printLine(succeeds(asRoot(administrator, kLoadDaemon)) ? "Global Daemon starts successfully."
                                                              : "Global Daemon failed to start.");
}

}  // namespace agent
