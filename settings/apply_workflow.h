#pragma once

#include <optional>
#include <string>
#include <vector>

#include "agent/accounts.h"

namespace settings {

/// What an administrator asked for, already validated, and as whom it is to be done.
struct ApplyRequest {
  std::string oem;
  std::string server;
  std::string port;
  std::string language;  ///< two-letter code
  bool profile = false;
  bool reset_settings = false;
  agent::Credentials administrator;
  /// Looked up by commands when nothing is given.
  std::optional<agent::ConsoleUser> consoleUser;
};

/// The console user that the program was started with: exactly two arguments after the program's
/// own path (`arguments[0]`), the name and the numeric id, taken as they are.
std::optional<agent::ConsoleUser> consoleUserFromArguments(
    const std::vector<std::string> &arguments);

/// Stops the agent's launchd jobs that are loaded, writes server.plist, resets the agent's settings
/// if asked, and loads the jobs that are not loaded. The per-user job stops first and starts last.
/// Blocks to the end and never skips a step because an earlier one failed; failures show only in
/// the remarks and the error log of the single operations. Killed in between, it leaves the jobs
/// stopped.
void applySettings(const ApplyRequest &request);

}  // namespace settings
