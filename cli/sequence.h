#pragma once

#include <string>
#include <vector>

#include "app/edition.h"
#include "cli/observation.h"
#include "cli/state.h"

namespace cli {

struct SequenceRequest {
  const app::Edition &edition;
  WantedSettings wanted;
  Console console;
  bool reset = false;
};

struct SequenceResult {
  State after;
  std::vector<std::string> problems;  ///< everything that is not effective
};

/// Runs the window's Apply as root, then checks the result. Ignores interruptions from its
/// beginning to the end of the process. What the commands print goes to standard error afterwards.
SequenceResult runSequence(const SequenceRequest &request);

}  // namespace cli
