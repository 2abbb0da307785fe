#pragma once

#include <string>

/// The command lines of the connection test. The server stands between double quotes as typed,
/// unescaped: in host-name mode the shell reads it as it would typed text, which is intended.
namespace settings {

/// One ICMP echo.
std::string pingCommand(const std::string &server);

/// A TCP connection that sends nothing.
std::string portTestCommand(const std::string &server, const std::string &port);

/// Runs the command with the program's own rights and waits for it, without a time limit of its
/// own. True when it exited with status 0.
bool isReachable(const std::string &command);

}  // namespace settings
