#pragma once

#include <string>

#include "app/edition.h"
#include "cli/exit_status.h"
#include "cli/options.h"
#include "cli/report.h"

namespace cli {

struct Result {
  ExitStatus status = kAsRequested;
  Report report;
};

/// A result that reports only that problem.
Result refusal(ExitStatus status, const std::string &problem);

/// Carries out `show`, `check` or `apply` as root. What the commands print goes where the process's
/// standard streams go; the result is returned.
Result carryOut(const Options &options, const app::Edition &edition);

}  // namespace cli
