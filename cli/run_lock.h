#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <system_error>

namespace cli {

/// Only root can write to it. The system clears it at every start, when it also loads the launchd
/// jobs again.
inline constexpr const char *kRunFolder = "/var/run/configure-agent";

/// Left in the file while a run changes the system, so that the next one notices an interruption.
struct UnfinishedMark {
  pid_t processGroup = 0;  ///< of the run and its commands
  bool reset = false;      ///< the run was to reset the agent's settings
};

/// The mark in that folder; nothing when no run is unfinished, or when the folder is missing,
/// belongs to somebody else, or lets others write. Takes no lock, so a run in progress counts as
/// unfinished.
std::optional<UnfinishedMark> readMark(const std::string &folder);

/// Lets one run at a time change the system. Lock and mark are one file: the lock ends with the
/// process, however that ends; the mark stays until it is cleared. Commands do not inherit it.
class RunLock {
 public:
  /// Takes the lock, or finds it taken; does not wait. Creates the folder if it is missing.
  explicit RunLock(const std::string &folder);
  ~RunLock();
  RunLock(const RunLock &) = delete;
  RunLock &operator=(const RunLock &) = delete;

  bool isBusy() const { return isBusy_; }
  /// Why there is no lock; empty if there is one, or if another run has it.
  std::error_code error() const { return error_; }

  /// What an earlier run left. This and the functions below need the lock.
  std::optional<UnfinishedMark> mark() const;
  [[nodiscard]] std::error_code setMark(const UnfinishedMark &mark) const;
  [[nodiscard]] std::error_code clearMark() const;

 private:
  int file_ = -1;
  bool isBusy_ = false;
  std::error_code error_;
};

/// Waits until no process of that group is left: a command of a run that was killed may still be
/// running. Gives up after `seconds`.
void waitForProcessGroup(pid_t group, double seconds);

}  // namespace cli
