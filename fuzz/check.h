#pragma once

#include <string_view>

#include "app/diagnostics.h"

namespace fuzz {

/// Aborts when the condition is false, which makes the input a finding.
inline void check(bool holds, std::string_view what) {
  if (!holds) app::fatalError(what);
}

inline constexpr std::string_view kDigits = "0123456789";

/// Whether a text has characters, and only these.
inline bool consistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace fuzz
