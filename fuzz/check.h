#pragma once

#include <string_view>

#include "app/diagnostics.h"

namespace fuzz {

/// Ends the process, which makes the input a finding.
inline void check(bool holds, std::string_view what) {
  if (!holds) app::fatalError(what);
}

}  // namespace fuzz
