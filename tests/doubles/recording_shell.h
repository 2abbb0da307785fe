#pragma once

#include <functional>
#include <string>
#include <vector>

#include "agent/shell.h"

/// Stands in for the real shell: records every command in order, runs none, and answers as told.
namespace doubles {

struct RecordedCommand {
  std::string shell;
  std::string command;
  agent::ShellMode mode;
  bool operator==(const RecordedCommand &) const = default;
};

struct RecordingShell {
  std::vector<RecordedCommand> commands;
  /// Success with an empty text unless a test says otherwise.
  std::function<agent::ShellResult(const RecordedCommand &)> answer;

  std::vector<std::string> commandLines() const;
};

/// The one recorder, emptied by `resetShell`.
RecordingShell &recordingShell();
void resetShell();

}  // namespace doubles
