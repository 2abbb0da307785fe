#include "agent/shell.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "agent/utf8.h"
#include "app/diagnostics.h"
#include "app/error_log.h"

// POSIX leaves the declaration to the program; glibc has one all the same.
extern char **environ;  // NOLINT(readability-redundant-declaration)

namespace agent {
namespace {

constexpr int kShellNotStarted = 127;

/// Owns one end of a pipe.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { reset(); }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  int get() const { return number_; }
  void reset(int number = -1) {
    if (number_ >= 0) ::close(number_);
    number_ = number;
  }

 private:
  int number_;
};

/// How the child is to be started: attributes and what its standard streams are connected to.
class SpawnRequest {
 public:
  SpawnRequest() {
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawn_file_actions_init(&actions_);
    sigset_t every;
    sigset_t none;
    sigfillset(&every);  // macros on macOS, so without a scope
    sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&attributes_, &every);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~SpawnRequest() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SpawnRequest(const SpawnRequest &) = delete;
  SpawnRequest &operator=(const SpawnRequest &) = delete;

  void sendOutputTo(int descriptor) {
    ::posix_spawn_file_actions_adddup2(&actions_, descriptor, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, descriptor, STDERR_FILENO);
  }

  /// 0, or the system's error number.
  int start(const std::string &shell, const std::string &command, pid_t &child) const {
    std::array<char *, 4> arguments{const_cast<char *>(shell.c_str()), const_cast<char *>("-c"),
                                    const_cast<char *>(command.c_str()), nullptr};
    return ::posix_spawn(&child, shell.c_str(), &actions_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

/// The frameworks open files without asking for close-on-exec, and a command may run as root: let
/// nothing but the standard streams through. "/dev/fd" lists the open descriptors on every system.
void closeNonStandardDescriptorsOnExec() {
  const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir("/dev/fd"), ::closedir);
  if (!folder) return;
  while (const dirent *entry = ::readdir(folder.get())) {
    const int descriptor = std::atoi(entry->d_name);
    if (descriptor > STDERR_FILENO) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

/// A parent may have had us inherit an ignored SIGCHLD; then the kernel drops exit statuses.
void stopIgnoringChildExits() {
  struct sigaction action;
  if (::sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
    ::signal(SIGCHLD, SIG_DFL);
  }
}

/// Waits for exactly that child, also when signals arrive meanwhile.
std::int32_t waitFor(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return kShellNotStarted;
  }
  return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return text;
    }
  }
}

/// Starts the shell from a short-lived process in between, so that it is never our child and leaves
/// no zombie however long we live. 0, or the system's error number.
int launchDetached(const SpawnRequest &plan, const std::string &shell, const std::string &command) {
  const pid_t between = ::fork();
  if (between < 0) return errno;
  if (between == 0) {
    pid_t child = -1;
    ::_exit(plan.start(shell, command, child));
  }
  return waitFor(between);
}

ShellResult notStarted(const std::string &shell, int error) {
  app::printErrorLog("unable to run " + shell + ": " + std::strerror(error));
  return {.text = {}, .status = kShellNotStarted};
}

}  // namespace

ShellResult runShellCommand(const std::string &shell, const std::string &command, ShellMode mode) {
  SpawnRequest plan;
  Descriptor readEnd;
  Descriptor writeEnd;
  if (mode == ShellMode::Capture) {
    std::array<int, 2> ends;
    if (::pipe(ends.data()) != 0) return notStarted(shell, errno);
    readEnd.reset(ends[0]);
    writeEnd.reset(ends[1]);
    plan.sendOutputTo(writeEnd.get());
  }
  closeNonStandardDescriptorsOnExec();
  stopIgnoringChildExits();

  if (mode == ShellMode::LaunchOnly) {
    const int error = launchDetached(plan, shell, command);
    return error == 0 ? ShellResult{} : notStarted(shell, error);
  }

  pid_t child = -1;
  if (const int error = plan.start(shell, command, child); error != 0) {
    return notStarted(shell, error);
  }
  writeEnd.reset();
  ShellResult result;
  const std::int32_t status = waitFor(child);
  if (mode == ShellMode::Status) result.status = status;
  if (mode == ShellMode::Capture) {
    result.text = readToEnd(readEnd.get());
    if (!isUtf8(result.text)) app::fatalError("output of " + shell + " is not UTF-8");
  }
  return result;
}

}  // namespace agent
