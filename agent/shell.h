#pragma once

#include <cstdint>
#include <string>

namespace agent {

inline constexpr const char *kBash = "/bin/bash";
inline constexpr const char *kSh = "/bin/sh";

/// Where output goes, whether the call waits, and which field of the result is filled. Standard
/// input is always the program's own.
enum class ShellMode {
  Capture,     ///< both output streams in one pipe, waits; fills `text`
  Status,      ///< output goes where the program's goes, waits; fills `status`
  WaitOnly,    ///< output goes where the program's goes, waits; fills nothing
  LaunchOnly,  ///< output goes where the program's goes, does not wait; fills nothing
};

enum class ShellOutcome {
  Done,        ///< the command ended or, in launch-only mode, was started
  NotStarted,  ///< nothing was run
  NoResult,    ///< the command was or may have been started; its status or output is not known
};

/// The status for a command that gave none: what a shell returns for an unknown command.
inline constexpr std::int32_t kNoExitStatus = 127;

struct ShellResult {
  /// UTF-8, as written by the command, with its trailing newline.
  std::string text = {};
  /// 0 is success. The number of the signal when one ended the shell.
  std::int32_t status = 0;
  ShellOutcome outcome = ShellOutcome::Done;
};

/// Runs `shell -c command`, the command as one argument without escaping. The only function that
/// starts a process. The child gets default signal handling and only the three standard streams;
/// when that cannot be arranged, nothing is run.
///
/// Required: Capture waits for the exit first and reads afterwards, so a command that writes more
/// than the pipe holds never ends. The commands run this way print a line or nothing. Output that
/// is not UTF-8 stops the program. Every other failure to run a command or to get its result goes
/// to the error log, which names the shell and the system call, never the command.
[[nodiscard]] ShellResult runShellCommand(const std::string &shell, const std::string &command,
                                          ShellMode mode);

}  // namespace agent
