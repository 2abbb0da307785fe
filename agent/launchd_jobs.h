#pragma once

#include <string>

#include "agent/accounts.h"

/// The agent's two launchd jobs: the system-wide daemon, managed as root with the administrator's
/// credentials, and the per-user agent in the console user's domain. The same in every edition.
/// Every operation runs one command and blocks until it has ended; nothing is cached.
namespace agent {

/// Short name of the user who owns the console, as printed, with the trailing newline.
std::string getloggedInUser();

/// Numeric id of that user, as printed, with the trailing newline. For an unknown user: the error
/// message of `id`, then an empty line.
std::string getloggedInUID(const std::string &user);

/// Whether the job is loaded. A command that fails for any reason (a wrong password, say) counts as
/// not loaded.
bool checkGlobalAgent(const ConsoleUser &console);
bool checkGlobalDaemon(const Credentials &administrator);

/// Unload or load the job and print one status message to standard output.
void stopGlobalAgent(const ConsoleUser &console);
void stopGlobalDaemon(const Credentials &administrator);
void startGlobalDaemon(const Credentials &administrator);

/// With `waitexit` false the command is not waited for, and the status message says only that the
/// start was requested.
void startGlobalAgent(const ConsoleUser &console, bool waitexit);

}  // namespace agent
