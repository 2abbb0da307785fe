#include "settings/apply_workflow.h"

#include "agent/launchd_jobs.h"
#include "agent/server_plist.h"
#include "agent/settings_reset.h"
#include "app/diagnostics.h"

namespace settings {
namespace {

std::string withoutNewlines(std::string text) {
  std::erase(text, '\n');
  return text;
}

agent::ConsoleUser lookUpConsoleUser() {
  std::string user = lookUpConsoleUserName();
  std::string uid = lookUpUserId(user);
  return {.user = std::move(user), .uid = std::move(uid)};
}

std::optional<agent::ConsoleUser> consoleUserFor(const ApplyRequest &request) {
  if (request.nobodyAtConsole) return std::nullopt;
  const agent::ConsoleUser console =
      request.consoleUser ? *request.consoleUser : lookUpConsoleUser();
  app::printLine("USER=" + console.user + " uid=" + console.uid);
  return console;
}

void resetSettings(const ApplyRequest &request) {
  for (const std::string_view filename : kSettingsFilesToDelete) {
    agent::deleteSettings(request.oem, request.administrator, filename);
  }
  agent::generateConfigFile(request.oem);
}

}  // namespace

std::optional<agent::ConsoleUser> consoleUserFromArguments(
    const std::vector<std::string> &arguments) {
  if (arguments.size() != 3) return std::nullopt;
  return agent::ConsoleUser{.user = arguments[1], .uid = arguments[2]};
}

std::string lookUpConsoleUserName() { return withoutNewlines(agent::getloggedInUser()); }

std::string lookUpUserId(const std::string &user) {
  return withoutNewlines(agent::getloggedInUID(user));
}

ApplyOutcome applySettings(const ApplyRequest &request) {
  const std::optional<agent::ConsoleUser> console = consoleUserFor(request);
  const agent::Credentials &administrator = request.administrator;

  // Each check asks launchd again: the operation before it may have failed.
  if (console && agent::checkGlobalAgent(*console)) agent::stopGlobalAgent(*console);
  if (agent::checkGlobalDaemon(administrator)) agent::stopGlobalDaemon(administrator);

  ApplyOutcome outcome;
  outcome.write = agent::generateServerPlistFile({.server = request.server,
                                                  .port = request.port,
                                                  .lang = request.language,
                                                  .profile = request.profile});
  if (request.reset_settings) resetSettings(request);

  outcome.daemonStarted = !agent::checkGlobalDaemon(administrator);
  if (outcome.daemonStarted) agent::startGlobalDaemon(administrator);
  outcome.agentStarted = console && !agent::checkGlobalAgent(*console);
  if (outcome.agentStarted) agent::startGlobalAgent(*console, true);
  return outcome;
}

}  // namespace settings
