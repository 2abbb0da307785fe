#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/state.h"

namespace cli {

/// What one run reports. Parts that it did not get to are missing.
struct Report {
  bool changed = false;  ///< for `check`: whether `apply` would change something
  std::optional<State> before;
  std::optional<State> after;  ///< for `check`: what `apply` would leave
  std::optional<WantedSettings> wanted;
  std::vector<std::string> problems;
};

/// One line of JSON in ASCII, with a newline: an object with the members `changed`, `before`,
/// `after`, `wanted` and `problems`, always all of them, null where the report has no such part.
std::string jsonReport(const Report &report);

/// The same for people: a line for each value, with the old value if it has changed.
std::string textReport(const Report &report);

/// The text as a JSON string with its quotes, in ASCII. A byte that is not part of valid UTF-8
/// becomes U+FFFD.
std::string jsonString(std::string_view text);

}  // namespace cli
