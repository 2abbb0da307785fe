#include "settings/apply_workflow.h"

#include <array>
#include <string_view>

#include "agent/launchd_jobs.h"
#include "agent/server_plist.h"
#include "agent/settings_reset.h"
#include "app/diagnostics.h"

namespace settings {
namespace {

constexpr std::array<std::string_view, 3> kSettingsFilesToDelete{
    "safeguarding_server.xml", "tkprotocolserver.settings.xml", "safeguarding_cloud.xml"};

std::string withoutNewlines(std::string text) {
  std::erase(text, '\n');
  return text;
}

agent::ConsoleUser lookUpConsoleUser() {
  std::string user = withoutNewlines(agent::getloggedInUser());
  std::string uid = withoutNewlines(agent::getloggedInUID(user));
  return {.user = std::move(user), .uid = std::move(uid)};
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

void applySettings(const ApplyRequest &request) {
  const agent::ConsoleUser console =
      request.consoleUser ? *request.consoleUser : lookUpConsoleUser();
  app::printLine("USER=" + console.user + " uid=" + console.uid);

  // Each check asks launchd afresh: an operation before it may have failed.
  if (agent::checkGlobalAgent(console)) agent::stopGlobalAgent(console);
  if (agent::checkGlobalDaemon(request.administrator)) {
    agent::stopGlobalDaemon(request.administrator);
  }
  agent::generateServerPlistFile({.server = request.server,
                                  .port = request.port,
                                  .lang = request.language,
                                  .profile = request.profile});
  if (request.reset_settings) resetSettings(request);
  if (!agent::checkGlobalDaemon(request.administrator)) {
    agent::startGlobalDaemon(request.administrator);
  }
  if (!agent::checkGlobalAgent(console)) agent::startGlobalAgent(console, true);
}

}  // namespace settings
