#pragma once

namespace cli {

/// Exit statuses of the tool; those from 64 on are the ones of <sysexits.h>.
enum ExitStatus : int {
  kAsAsked = 0,
  kNotAsAsked = 1,     ///< of `check`; of `apply`: applied, but not effective
  kUsage = 64,         ///< a bad command line or a bad value
  kUnavailable = 69,   ///< the agent is not installed
  kTemporary = 75,     ///< another run is at work
  kNoPermission = 77,  ///< not root
};

}  // namespace cli
