// Every system call that starts a command or waits for it, made to fail.

#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "agent/shell.h"
#include "doubles/failing_calls.h"
#include "doubles/process_state.h"
#include "doubles/scratch_folder.h"
#include "unit/agent_operations.h"

RETURNS_ERROR(posix_spawnattr_init, (posix_spawnattr_t * attributes), (attributes))
RETURNS_ERROR(posix_spawnattr_setsigdefault, (posix_spawnattr_t * attributes, const sigset_t *set),
              (attributes, set))
RETURNS_ERROR(posix_spawnattr_setsigmask, (posix_spawnattr_t * attributes, const sigset_t *set),
              (attributes, set))
RETURNS_ERROR(posix_spawnattr_setflags, (posix_spawnattr_t * attributes, short flags),
              (attributes, flags))
RETURNS_ERROR(posix_spawn_file_actions_init, (posix_spawn_file_actions_t * actions), (actions))
RETURNS_ERROR(posix_spawn_file_actions_adddup2,
              (posix_spawn_file_actions_t * actions, int from, int to), (actions, from, to))
RETURNS_ERROR(posix_spawn,
              (pid_t * child, const char *path, const posix_spawn_file_actions_t *actions,
               const posix_spawnattr_t *attributes, char *const *arguments,
               char *const *environment),
              (child, path, actions, attributes, arguments, environment))
SETS_ERRNO(int, -1, pipe, (int *ends), (ends))
SETS_ERRNO(DIR *, nullptr, opendir, (const char *path), (path))
SETS_ERRNO(dirent *, nullptr, readdir, (DIR * folder), (folder))
SETS_ERRNO(int, -1, sigaction,
           (int number, const struct sigaction *action, struct sigaction *before),
           (number, action, before))
SETS_ERRNO(pid_t, -1, fork, (), ())
SETS_ERRNO(pid_t, -1, waitpid, (pid_t child, int *status, int options), (child, status, options))
SETS_ERRNO(ssize_t, -1, read, (int descriptor, void *buffer, size_t size),
           (descriptor, buffer, size))

extern "C" int __real_fcntl(int descriptor, int operation, ...);
extern "C" int __wrap_fcntl(int descriptor, int operation, ...) {
  va_list arguments;
  va_start(arguments, operation);
  const long argument = va_arg(arguments, long);
  va_end(arguments);
  return doubles::fails("fcntl") ? -1 : __real_fcntl(descriptor, operation, argument);
}

namespace {

using agent::ShellMode;
using agent::ShellOutcome;
using doubles::kEndsTheProcess;
using doubles::kEveryMode;
using doubles::nameFor;
using doubles::openDescriptors;
using operations::kSecret;

doubles::Fault &theFault() { return doubles::failingCalls().fault; }

std::string withoutTime(const std::string &line) {
  constexpr std::size_t kTimeAndSpace = 24;
  return line.size() > kTimeAndSpace ? line.substr(kTimeAndSpace) : line;
}

/// Waits for commands that nobody else waits for: each inherits the write end of a pipe as its
/// standard input.
class RunningCommands {
 public:
  RunningCommands() : stdin_(::dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    readEnd_ = ends[0];
    ::dup2(ends[1], STDIN_FILENO);
    ::close(ends[1]);
  }
  void waitUntilGone() {
    ::dup2(stdin_, STDIN_FILENO);
    char byte = 0;
    EXPECT_EQ(::read(readEnd_, &byte, 1), 0);
    ::close(readEnd_);
    ::close(stdin_);
    // Children that could not be waited for are still ours.
    while (::waitpid(-1, nullptr, 0) > 0) {
    }
  }

 private:
  int stdin_;
  int readEnd_ = -1;
};

/// What one run gave.
struct Attempt {
  agent::ShellResult result;
  std::string error;  ///< without its time
  bool commandRan = false;
};

class StartOfACommand : public testing::Test {
 protected:
  void SetUp() override {
    // The first use opens a file of its own, which must not count as a leak.
    std::ignore = agent::runShellCommand(agent::kBash, "true", ShellMode::Status);
  }

  /// Runs a command whose text contains the secret while `call` fails.
  static Attempt runWith(ShellMode mode, std::string_view call, int error, int usesBefore = 0) {
    const doubles::ScratchFolder folder;
    const std::string file = folder.file("ran");
    const long descriptors = openDescriptors();
    Attempt run;
    RunningCommands everyCommand;
    testing::internal::CaptureStderr();
    theFault() = {.call = call, .error = error, .usesBefore = usesBefore, .happened = false};
    run.result = agent::runShellCommand(
        agent::kBash, std::string(": ") + kSecret + "; touch '" + file + "'", mode);
    theFault().call = {};
    everyCommand.waitUntilGone();
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(errors.find(kSecret), std::string::npos) << errors;
    EXPECT_EQ(openDescriptors(), descriptors);
    run.error = withoutTime(errors);
    run.commandRan = std::filesystem::exists(file);
    return run;
  }
};

struct Row {
  const char *call;
  int error;
  int usesBefore = 0;
  std::vector<ShellMode> modes{kEveryMode.begin(), kEveryMode.end()};
};

std::string message(const std::string &beginning, const Row &row) {
  return beginning + " /bin/bash: " + row.call + ": " + std::strerror(row.error) + "\n";
}

const std::vector<Row> kCallsBeforeTheStart{
    {.call = "posix_spawnattr_init", .error = ENOMEM},
    {.call = "posix_spawnattr_setsigdefault", .error = EINVAL},
    {.call = "posix_spawnattr_setsigmask", .error = EINVAL},
    {.call = "posix_spawnattr_setflags", .error = EINVAL},
    {.call = "posix_spawn_file_actions_init", .error = ENOMEM},
    {.call = "opendir", .error = EMFILE},
    {.call = "readdir", .error = EIO},
    {.call = "readdir", .error = EIO, .usesBefore = 2},
    {.call = "fcntl", .error = EPERM},
    {.call = "sigaction", .error = EINVAL},
    {.call = "posix_spawn", .error = EAGAIN},
    {.call = "pipe", .error = EMFILE, .modes = {ShellMode::Capture}},
    {.call = "posix_spawn_file_actions_adddup2", .error = ENOMEM, .modes = {ShellMode::Capture}},
    {.call = "posix_spawn_file_actions_adddup2",
     .error = ENOMEM,
     .usesBefore = 1,
     .modes = {ShellMode::Capture}},
    {.call = "fork", .error = EAGAIN, .modes = {ShellMode::LaunchOnly}},
};

TEST_F(StartOfACommand, NamesTheCallThatFailedAndRunsNothing) {
  for (const Row &row : kCallsBeforeTheStart) {
    for (const ShellMode mode : row.modes) {
      SCOPED_TRACE(row.call + (" in mode " + nameFor(mode)));
      const Attempt run = runWith(mode, row.call, row.error, row.usesBefore);
      EXPECT_FALSE(run.commandRan);
      EXPECT_EQ(run.result.outcome, ShellOutcome::NotStarted);
      EXPECT_EQ(run.result.status, 127);
      EXPECT_EQ(run.result.text, "");
      EXPECT_EQ(run.error, message("unable to run", row));
    }
  }
}

TEST_F(StartOfACommand, IgnoresADescriptorThatIsClosedWhileTheyAreListed) {
  const Attempt run = runWith(ShellMode::Status, "fcntl", EBADF);
  EXPECT_TRUE(theFault().happened);
  EXPECT_TRUE(run.commandRan);
  EXPECT_EQ(run.result.outcome, ShellOutcome::Done);
  EXPECT_EQ(run.error, "");
}

TEST_F(StartOfACommand, ChecksBothCallsThatStopIgnoringChildExits) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  const Attempt run = runWith(ShellMode::Status, "sigaction", EINVAL, 1);
  ::signal(SIGCHLD, before);
  EXPECT_FALSE(run.commandRan);
  EXPECT_EQ(run.result.outcome, ShellOutcome::NotStarted);
}

TEST_F(StartOfACommand, WithoutAResultIsNotReportedAsNotStarted) {
  const Row rows[] = {
      {.call = "waitpid", .error = ECHILD},
      {.call = "read", .error = EIO, .modes = {ShellMode::Capture}},
  };
  for (const Row &row : rows) {
    for (const ShellMode mode : row.modes) {
      SCOPED_TRACE(row.call + (" in mode " + nameFor(mode)));
      const Attempt run = runWith(mode, row.call, row.error);
      EXPECT_TRUE(run.commandRan);
      EXPECT_EQ(run.result.outcome, ShellOutcome::NoResult);
      EXPECT_EQ(run.result.status, 127);
      EXPECT_EQ(run.result.text, "");
      EXPECT_EQ(run.error, message("no result from", row));
    }
  }
}

TEST_F(StartOfACommand, IsNotKnownWhenTheIntermediateProcessWasKilled) {
  const Attempt run = runWith(ShellMode::LaunchOnly, "posix_spawn", kEndsTheProcess);
  EXPECT_EQ(run.result.outcome, ShellOutcome::NoResult);
  EXPECT_EQ(run.error,
            message("no result from", {.call = "intermediate process", .error = ECANCELED}));
}

TEST_F(StartOfACommand, WaitsAndReadsAgainAfterASignal) {
  EXPECT_EQ(runWith(ShellMode::Status, "waitpid", EINTR).result.outcome, ShellOutcome::Done);
  EXPECT_EQ(runWith(ShellMode::Capture, "read", EINTR).result.outcome, ShellOutcome::Done);
}

TEST_F(StartOfACommand, NeverShowsThePasswordInAMessage) {
  for (const char *call : {"posix_spawnattr_init", "opendir", "sigaction", "posix_spawn"}) {
    for (const auto &operation : operations::kAll) {
      testing::internal::CaptureStdout();
      testing::internal::CaptureStderr();
      theFault() = {.call = call, .error = ENOMEM, .usesBefore = 0, .happened = false};
      operation();
      theFault() = {};
      const std::string output =
          testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
      EXPECT_NE(output.find("unable to run /bin/"), std::string::npos) << output;
      EXPECT_EQ(output.find(kSecret), std::string::npos) << output;
    }
  }
}

}  // namespace
