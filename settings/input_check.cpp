#include "settings/input_check.h"

#include "settings/address.h"

namespace settings {

InputVerdict checkServer(const std::string &server, bool ipAddressMode) {
  if (server.empty()) return InputVerdict::Stop;
  if (ipAddressMode && !isIPv6(server) && !isIPv4(server)) return InputVerdict::ClearServer;
  return InputVerdict::Accept;
}

InputVerdict checkPort(const std::string &port) {
  return isPort(port) ? InputVerdict::Accept : InputVerdict::ResetPort;
}

}  // namespace settings
