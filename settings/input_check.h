#pragma once

#include <string>

namespace settings {

/// How the window answers the typed server and port: bad input is corrected in place and stops the
/// action, without a message.
enum class InputVerdict {
  Accept,
  Stop,         ///< nothing to correct: the server is empty
  ClearServer,  ///< no address in ip-address mode: empty the field and stop
  ResetPort,    ///< no port: put the default port into the field and stop
};

/// The texts are trimmed already. In host-name mode a server is not looked at beyond being empty.
InputVerdict checkServer(const std::string &server, bool ipAddressMode);

InputVerdict checkPort(const std::string &port);

}  // namespace settings
