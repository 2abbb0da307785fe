#include "settings/validation.h"

#include <arpa/inet.h>

#include <array>
#include <charconv>
#include <cstdint>

namespace settings {
namespace {

bool isAddress(int family, const std::string &text) {
  std::array<unsigned char, sizeof(in6_addr)> address;
  return ::inet_pton(family, text.c_str(), address.data()) == 1;
}

}  // namespace

bool isPort(std::string_view text) {
  // from_chars accepts a minus but no plus; "+-1" must not reach it as "-1".
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return false;
  }
  std::int64_t value = 0;
  const char *end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end && value >= 0 && value <= 65535;
}

bool isIPv4(const std::string &text) { return isAddress(AF_INET, text); }

bool isIPv6(const std::string &text) { return isAddress(AF_INET6, text); }

ValidationResult validateServer(const std::string &server, bool ipAddressMode) {
  if (server.empty()) return ValidationResult::Stop;
  if (ipAddressMode && !isIPv6(server) && !isIPv4(server)) return ValidationResult::ClearServer;
  return ValidationResult::Accept;
}

ValidationResult validatePort(const std::string &port) {
  return isPort(port) ? ValidationResult::Accept : ValidationResult::ResetPort;
}

}  // namespace settings
