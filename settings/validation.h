#pragma once

#include <string>
#include <string_view>

namespace settings {

/// Replaces a missing or invalid port.
inline constexpr std::string_view kDefaultPort = "6000";

/// Whether the whole text is a decimal number from 0 to 65535, with at most one sign.
/// Required: "0", "+80" and "-0" are ports.
bool isPort(std::string_view text);

/// Whether the system's address converter accepts the text, up to its first NUL, as dotted-decimal
/// IPv4 or as IPv6.
bool isIPv4(const std::string &text);
bool isIPv6(const std::string &text);

/// What the window does with the typed server and port: bad input is corrected in place and stops
/// the action, without a message.
enum class ValidationResult {
  Accept,
  Stop,         ///< nothing to correct: the server is empty
  ClearServer,  ///< not an address in IP-address mode: empty the field and stop
  ResetPort,    ///< not a port: put the default port into the field and stop
};

/// The server is already trimmed. In host-name mode it is accepted unless it is empty.
ValidationResult validateServer(const std::string &server, bool ipAddressMode);

/// The port is already trimmed.
ValidationResult validatePort(const std::string &port);

}  // namespace settings
