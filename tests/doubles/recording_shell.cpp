#include "doubles/recording_shell.h"

namespace doubles {

std::vector<std::string> RecordingShell::commandLines() const {
  std::vector<std::string> lines;
  for (const RecordedCommand &command : commands) lines.push_back(command.command);
  return lines;
}

RecordingShell &recordingShell() {
  static RecordingShell shell;
  return shell;
}

void resetShell() { recordingShell() = {}; }

}  // namespace doubles

namespace agent {

ShellResult runShellCommand(const std::string &shell, const std::string &command, ShellMode mode) {
  doubles::RecordingShell &recorder = doubles::recordingShell();
  recorder.commands.push_back({shell, command, mode});
  return recorder.answer ? recorder.answer(recorder.commands.back()) : ShellResult{};
}

}  // namespace agent
