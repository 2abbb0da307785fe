#include "agent/child_process.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

// POSIX leaves the declaration to the program; glibc declares it anyway.
extern char **environ;  // NOLINT(readability-redundant-declaration)

namespace agent {
namespace {

[[noreturn]] void fail(int error, const char *call) {
  throw std::system_error(error, std::generic_category(), call);
}

/// For calls that return an error number.
void check(int error, const char *call) {
  if (error != 0) fail(error, call);
}

/// For calls that return -1 and set errno.
void checkErrno(int result, const char *call) {
  if (result == -1) fail(errno, call);
}

[[noreturn]] void throwNoResult(const char *call) {
  throw NoResult(errno, std::generic_category(), call);
}

void setCloseOnExec(int descriptor) {
  // EBADF: another thread has closed it since it was listed; nothing is left to inherit.
  if (::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == -1 && errno != EBADF) fail(errno, "fcntl");
}

/// The frameworks open files without close-on-exec, and a command may run as root: it must inherit
/// nothing but the standard streams. "/dev/fd" lists the open descriptors on every system.
void closeNonStandardDescriptorsOnExec() {
  const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir("/dev/fd"), ::closedir);
  if (!folder) fail(errno, "opendir");
  for (;;) {
    errno = 0;
    const dirent *entry = ::readdir(folder.get());
    if (entry == nullptr) break;
    const int descriptor = std::atoi(entry->d_name);
    if (descriptor > STDERR_FILENO) setCloseOnExec(descriptor);
  }
  check(errno, "readdir");
}

/// The program may have inherited an ignored SIGCHLD; then the kernel drops exit statuses.
void stopIgnoringChildExits() {
  struct sigaction action {};
  checkErrno(::sigaction(SIGCHLD, nullptr, &action), "sigaction");
  if (action.sa_handler != SIG_IGN) return;
  action.sa_handler = SIG_DFL;
  checkErrno(::sigaction(SIGCHLD, &action, nullptr), "sigaction");
}

void prepareForChildren() {
  closeNonStandardDescriptorsOnExec();
  stopIgnoringChildExits();
}

/// The status as the system reports it.
int rawStatus(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) throwNoResult("waitpid");
  }
  return status;
}

}  // namespace

Pipe::Pipe() { checkErrno(::pipe(ends_.data()), "pipe"); }

Pipe::~Pipe() {
  ::close(ends_[0]);
  closeWriteEnd();
}

void Pipe::closeWriteEnd() {
  if (ends_[1] >= 0) ::close(ends_[1]);
  ends_[1] = -1;
}

std::string Pipe::readToEnd() const {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = ::read(ends_[0], buffer.data(), buffer.size());
    if (count == 0) return text;
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      throwNoResult("read");
    }
  }
}

ShellStart::Attributes::Attributes() {
  check(::posix_spawnattr_init(&value), "posix_spawnattr_init");
}

ShellStart::Attributes::~Attributes() { ::posix_spawnattr_destroy(&value); }

ShellStart::FileActions::FileActions() {
  check(::posix_spawn_file_actions_init(&value), "posix_spawn_file_actions_init");
}

ShellStart::FileActions::~FileActions() { ::posix_spawn_file_actions_destroy(&value); }

ShellStart::ShellStart(const std::string &shell, const std::string &command)
    : shell_(shell), command_(command) {
  sigset_t every;
  sigset_t none;
  sigfillset(&every);  // macros on macOS, so without "::"
  sigemptyset(&none);
  check(::posix_spawnattr_setsigdefault(&attributes_.value, &every),
        "posix_spawnattr_setsigdefault");
  check(::posix_spawnattr_setsigmask(&attributes_.value, &none), "posix_spawnattr_setsigmask");
  check(::posix_spawnattr_setflags(&attributes_.value,
                                   POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK),
        "posix_spawnattr_setflags");
}

void ShellStart::sendOutputTo(const Pipe &pipe) {
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    check(::posix_spawn_file_actions_adddup2(&actions_.value, pipe.writeEnd(), stream),
          "posix_spawn_file_actions_adddup2");
  }
}

/// 0, or the system's error number. Throws nothing: it also runs in a forked process.
int ShellStart::spawn(pid_t &child) const {
  std::array<char *, 4> arguments{const_cast<char *>(shell_.c_str()), const_cast<char *>("-c"),
                                  const_cast<char *>(command_.c_str()), nullptr};
  return ::posix_spawn(&child, shell_.c_str(), &actions_.value, &attributes_.value,
                       arguments.data(), environ);
}

pid_t ShellStart::start() const {
  prepareForChildren();
  pid_t child = -1;
  check(spawn(child), "posix_spawn");
  return child;
}

void ShellStart::startDetached() const {
  prepareForChildren();
  const pid_t intermediate = ::fork();
  checkErrno(intermediate, "fork");
  if (intermediate == 0) {
    pid_t child = -1;
    ::_exit(spawn(child));  // an error number fits into an exit status
  }
  const int status = rawStatus(intermediate);
  if (WIFSIGNALED(status))
    throw NoResult(ECANCELED, std::generic_category(), "intermediate process");
  check(WEXITSTATUS(status), "posix_spawn");
}

int waitForChild(pid_t child) {
  const int status = rawStatus(child);
  return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace agent
