#pragma once

#include <string_view>

#include "app/diagnostics.h"

namespace fuzz {

/// Aborts when the condition is false, which makes the input a finding.
inline void check(bool holds, std::string_view what) {
  if (!holds) app::fatalError(what);
}

}  // namespace fuzz
