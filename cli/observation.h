#pragma once

#include "agent/accounts.h"
#include "cli/state.h"

namespace cli {

/// The account that the tool acts as: for root the command lines need no password.
agent::Credentials rootAccount();

/// The user at the console.
struct Console {
  agent::ConsoleUser user;  ///< empty if nobody is there or no id is found
  bool isUnknown = false;   ///< somebody is there, but the id cannot be found
};

/// Asks who owns the console. The login window's accounts and root count as nobody.
Console findConsole();

/// Reads server.plist and asks launchd for the jobs: one command, two with a user at the console.
/// Leaves `unfinished` at its default.
State observe(const Console &console);

}  // namespace cli
