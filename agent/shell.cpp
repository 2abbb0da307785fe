#include "agent/shell.h"

#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "agent/child_process.h"
#include "agent/utf8.h"
#include "app/diagnostics.h"
#include "app/error_log.h"

namespace agent {
namespace {

ShellResult capture(const std::string &shell, const std::string &command) {
  Pipe output;
  ShellStart start(shell, command);
  start.sendOutputTo(output);
  const pid_t child = start.start();
  output.closeWriteEnd();
  // Waits first and reads afterwards: required.
  std::ignore = waitForChild(child);
  std::string text = output.readToEnd();
  if (!isUtf8(text)) app::fatalError("output of " + shell + " is not UTF-8");
  return {.text = std::move(text)};
}

ShellResult run(const std::string &shell, const std::string &command, ShellMode mode) {
  if (mode == ShellMode::Capture) return capture(shell, command);
  const ShellStart start(shell, command);
  if (mode == ShellMode::LaunchOnly) {
    start.startDetached();
    return {};
  }
  const int status = waitForChild(start.start());
  return {.status = mode == ShellMode::Status ? status : 0};
}

ShellResult failure(ShellOutcome outcome, std::string_view what, const std::string &shell,
                    const std::system_error &error) {
  app::printErrorLog(std::string(what) + shell + ": " + error.what());
  return {.status = kNoExitStatus, .outcome = outcome};
}

}  // namespace

ShellResult runShellCommand(const std::string &shell, const std::string &command, ShellMode mode) {
  try {
    return run(shell, command, mode);
  } catch (const NoResult &error) {
    return failure(ShellOutcome::NoResult, "no result from ", shell, error);
  } catch (const std::system_error &error) {
    return failure(ShellOutcome::NotStarted, "unable to run ", shell, error);
  }
}

}  // namespace agent
