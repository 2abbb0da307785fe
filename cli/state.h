#pragma once

#include <optional>
#include <string>
#include <vector>

#include "settings/server_data.h"

namespace cli {

/// What server.plist should hold.
struct WantedSettings {
  std::string server;
  std::string port;  ///< plain decimal digits
  std::string language;
  bool profile = false;
};

/// The state of the machine.
struct State {
  settings::StoredValues stored;
  bool daemonLoaded = false;
  /// Name of the user at the console; empty if nobody is there or no id is found.
  std::string consoleUser;
  /// Whether the console user's own job is loaded; nothing without a console user.
  std::optional<bool> agentLoaded;
  /// The owner of the console has no user id, so that user's job cannot be reached.
  bool consoleUserUnknown = false;
  /// An earlier run was interrupted in the middle, or is still in progress.
  bool unfinished = false;
};

/// Everything that is not as requested, one sentence each. Compares values: how the file is written
/// does not matter.
std::vector<std::string> differences(const State &state, const WantedSettings &wanted);

/// `state` with everything as requested.
State asRequested(State state, const WantedSettings &wanted);

}  // namespace cli
