#pragma once

#include <string>

/// The connection test. Both operations run one command with the program's own rights and wait for
/// it, without a time limit of their own; true when it exited with status 0. The server is inserted
/// between double quotes as typed. Required: it is not escaped, so in host-name mode the shell
/// interprets it.
namespace settings {

/// Whether the server answers one ICMP echo.
bool answersPing(const std::string &server);

/// Whether the server accepts a TCP connection on that port. Nothing is sent.
bool acceptsConnection(const std::string &server, const std::string &port);

}  // namespace settings
