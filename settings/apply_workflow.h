#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "agent/accounts.h"

namespace settings {

/// The agent's settings files that a reset deletes, in this order.
inline constexpr std::array<std::string_view, 3> kSettingsFilesToDelete{
    "safeguarding_server.xml", "tkprotocolserver.settings.xml", "safeguarding_cloud.xml"};

/// What an administrator asked for, already validated, and the accounts to do it with.
struct ApplyRequest {
  std::string oem;
  std::string server;
  std::string port;
  std::string language;  ///< two-letter code
  bool profile = false;
  bool reset_settings = false;
  agent::Credentials administrator;
  /// Looked up by commands if not given.
  std::optional<agent::ConsoleUser> consoleUser;
  /// Nobody is logged in at the console: the per-user job is neither stopped nor started, since
  /// there is no user's domain to start it in. `consoleUser` is ignored.
  bool nobodyAtConsole = false;
};

/// What the state of the system does not show afterwards.
struct ApplyOutcome {
  std::error_code write;  ///< of server.plist
  /// Whether the job was loaded by this run. One that refused to stop is still loaded, with the
  /// settings that it read when it started.
  bool daemonStarted = false;
  bool agentStarted = false;
};

/// The console user that the program was started with: exactly two arguments after the program's
/// own path (`arguments[0]`), the name and the numeric id, taken as they are.
std::optional<agent::ConsoleUser> consoleUserFromArguments(
    const std::vector<std::string> &arguments);

/// Name of the user who owns the console, and the numeric id of that user, as commands find them,
/// without newlines. Neither is checked: the name may be empty, and what should be an id may be the
/// message of a failed command.
std::string lookUpConsoleUserName();
std::string lookUpUserId(const std::string &user);

/// Stops the agent's launchd jobs that are loaded, writes server.plist, resets the agent's settings
/// on request, and loads the jobs that are not loaded. The per-user job stops first and starts
/// last. Blocks to the end and never skips a step because an earlier one failed; the operations
/// report failures in their status messages and the error log. If the program is killed in between,
/// the jobs stay stopped.
ApplyOutcome applySettings(const ApplyRequest &request);

}  // namespace settings
