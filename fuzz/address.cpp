// The address tests against grammars of their own, written without any converter of the system.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "settings/validation.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

bool allOf(std::string_view text, bool (*test)(char)) {
  for (const char c : text) {
    if (!test(c)) return false;
  }
  return !text.empty();
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

/// Compares digits as text: no number type, no overflow. `limit` has no leading zero.
bool isAtMost(std::string_view digits, std::string_view limit) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits.size() < limit.size() || (digits.size() == limit.size() && digits <= limit);
}

bool expectPort(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return allOf(text, isDigit) && isAtMost(text, negative ? "0" : "65535");
}

bool expectIPv4(std::string_view text) {
  const std::vector<std::string_view> parts = split(text, '.');
  for (const std::string_view part : parts) {
    if (!allOf(part, isDigit) || !isAtMost(part, "255")) return false;
    if (part.size() > 1 && part.starts_with('0')) return false;
  }
  return parts.size() == 4;
}

/// Number of 16-bit groups in a part without "::"; nothing valid counts as too many.
std::size_t groupsIn(std::string_view text, bool endsTheAddress) {
  constexpr std::size_t kInvalid = 9;
  if (text.empty()) return 0;
  const std::vector<std::string_view> parts = split(text, ':');
  std::size_t count = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const bool last = endsTheAddress && i + 1 == parts.size();
    if (allOf(parts[i], isHexDigit) && parts[i].size() <= 4) {
      count += 1;
    } else if (last && expectIPv4(parts[i])) {
      count += 2;
    } else {
      return kInvalid;
    }
  }
  return count;
}

bool expectIPv6(std::string_view text) {
  const std::size_t gap = text.find("::");
  if (gap == std::string_view::npos) return !text.empty() && groupsIn(text, true) == 8;
  // A gap stands for one group or more.
  return groupsIn(text.substr(0, gap), false) + groupsIn(text.substr(gap + 2), true) <= 7;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(bytes), size);
  const std::string_view toNul(text.c_str());
  fuzz::check(settings::isPort(text) == expectPort(text), "isPort");
  fuzz::check(settings::isIPv4(text) == expectIPv4(toNul), "isIPv4");
  fuzz::check(settings::isIPv6(text) == expectIPv6(toNul), "isIPv6");
  return 0;
}
