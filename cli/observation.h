#pragma once

#include "agent/accounts.h"
#include "cli/state.h"

namespace cli {

/// The administrator as whom the tool acts: for root the command lines need no password.
agent::Credentials rootAccount();

/// Who sits at the console.
struct Console {
  agent::ConsoleUser user;  ///< empty when nobody does, or nobody whose id can be found
  bool isUnknown = false;   ///< somebody does, but the id cannot be found
};

/// Asks who owns the console. The login window's accounts and root count as nobody.
Console findConsole();

/// Reads server.plist and asks launchd for the jobs: one command, two with a user at the console.
/// `unfinished` is left as it is by default.
State observe(const Console &console);

}  // namespace cli
