#pragma once

#include <functional>
#include <string>
#include <vector>

#include "agent/shell.h"

/// Replaces the real shell: records every command in order, runs none, and returns what a test
/// tells it to.
namespace doubles {

struct RecordedCommand {
  std::string shell;
  std::string command;
  agent::ShellMode mode;
  bool operator==(const RecordedCommand &) const = default;
};

struct RecordingShell {
  std::vector<RecordedCommand> commands;
  /// Success without output unless a test says otherwise.
  std::function<agent::ShellResult(const RecordedCommand &)> answer;

  std::vector<std::string> commandLines() const;
};

/// The only recorder; `resetShell` clears it.
RecordingShell &recordingShell();
void resetShell();

}  // namespace doubles
