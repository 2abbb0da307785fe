#pragma once

namespace cli {

/// Exit statuses of the tool; those from 64 on come from <sysexits.h>.
enum ExitStatus : int {
  kAsRequested = 0,
  kNotAsRequested = 1,  ///< of `check`; of `apply`: applied, but not effective
  kUsage = 64,          ///< an invalid command line or value
  kUnavailable = 69,    ///< the agent is not installed
  kTemporary = 75,      ///< another run is in progress
  kNoPermission = 77,   ///< not root
};

}  // namespace cli
