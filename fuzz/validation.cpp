// Input validation: ports against an independent grammar; addresses, which the system's converter
// checks, against properties that every valid one has.

#include "settings/validation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "check.h"

namespace {

using settings::ValidationResult;

/// Compares digits as text: no number type, no overflow. `limit` has no leading zero.
bool isAtMost(std::string_view digits, std::string_view limit) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits.size() < limit.size() || (digits.size() == limit.size() && digits <= limit);
}

bool expectPort(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return fuzz::consistsOf(text, fuzz::kDigits) && isAtMost(text, negative ? "0" : "65535");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(bytes), size);
  const std::string_view toNul(text.c_str());
  const bool ipv4 = settings::isIPv4(text);
  const bool ipv6 = settings::isIPv6(text);
  fuzz::check(settings::isPort(text) == expectPort(text), "isPort");
  fuzz::check(!ipv4 || fuzz::consistsOf(toNul, "0123456789."), "isIPv4");
  fuzz::check(!ipv6 || fuzz::consistsOf(toNul, "0123456789abcdefABCDEF:."), "isIPv6");
  fuzz::check(!ipv4 || !ipv6, "both IPv4 and IPv6");
  const ValidationResult address = settings::validateServer(text, true);
  fuzz::check((address == ValidationResult::Accept) == (ipv4 || ipv6), "validateServer");
  return 0;
}
