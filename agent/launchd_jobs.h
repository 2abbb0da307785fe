#pragma once

#include <string>

#include "agent/accounts.h"

/// The agent's two launchd jobs: the system-wide daemon, driven as root with the administrator's
/// credentials, and the per-user agent in the console user's domain. The same in every edition.
/// Every operation runs one command and blocks until it has ended; nothing is remembered.
namespace agent {

/// Short name of the user who owns the console, as printed, with its line end.
std::string getloggedInUser();

/// Numeric id of that user, as printed, with its line end. For an unknown user: what `id` says on
/// its error stream, then an empty line.
std::string getloggedInUID(const std::string &user);

/// Whether the job is loaded. A command that fails for any reason (a wrong password, say) counts as
/// not loaded.
bool checkGlobalAgent(const ConsoleUser &console);
bool checkGlobalDaemon(const Credentials &administrator);

/// Unload or load the job and print one remark on the outcome to standard output.
void stopGlobalAgent(const ConsoleUser &console);
void stopGlobalDaemon(const Credentials &administrator);
void startGlobalDaemon(const Credentials &administrator);

/// With `waitexit` false the outcome is neither waited for nor known, and the remark says only that
/// the start was asked for.
void startGlobalAgent(const ConsoleUser &console, bool waitexit);

}  // namespace agent
