#include "cli/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/diagnostics.h"
#include "app/error_log.h"
#include "cli/exit_status.h"

// POSIX leaves the declaration to the program; glibc declares it anyway.
extern char **environ;  // NOLINT(readability-redundant-declaration)

namespace cli {
namespace {

constexpr std::array kInterruptions{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

constexpr std::array<std::string_view, 4> kShellVariables{"BASH_ENV", "BASHOPTS", "ENV",
                                                          "SHELLOPTS"};

/// Whether a shell would run or change something because of this variable before it runs its
/// command. Versions of bash differ in the names of exported functions; their values begin alike.
bool directsShells(std::string_view name, std::string_view value) {
  return value.starts_with("()") ||
         std::ranges::find(kShellVariables, name) != kShellVariables.end();
}

/// Never returns: the process is only there for its parent to wait for.
[[noreturn]] void passOnExitStatus(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : kNotAsRequested);
}

void copyToEnd(int from, int to) {
  std::array<char, 4096> buffer;
  ssize_t count = 0;
  while ((count = ::read(from, buffer.data(), buffer.size())) > 0) {
    writeTo(to, {buffer.data(), static_cast<std::size_t>(count)});
  }
}

}  // namespace

int separateResultFromMessages() {
  app::openStandardStreams();
  const int null = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (null < 0) app::fatalError("the null device cannot be opened");
  ::dup2(null, STDIN_FILENO);
  ::close(null);
  const int result = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  return result;
}

void writeTo(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void useSystemCommands() {
  ::setenv("PATH", "/usr/bin:/bin:/usr/sbin:/sbin", 1);
  std::vector<std::string> refused;
  for (char **next = environ; *next != nullptr; ++next) {
    const std::string_view variable(*next);
    const std::size_t end = variable.find('=');
    if (end == std::string_view::npos) continue;
    const std::string_view name = variable.substr(0, end);
    if (directsShells(name, variable.substr(end + 1))) refused.emplace_back(name);
  }
  for (const std::string &name : refused) ::unsetenv(name.c_str());
}

bool enterOwnSession() {
  if (::setsid() >= 0) return true;
  ::signal(SIGCHLD, SIG_DFL);  // if ignored, the child's exit status would be lost
  const pid_t child = ::fork();
  if (child < 0) return false;
  if (child > 0) {
    ignoreInterruptions();
    passOnExitStatus(child);
  }
  return ::setsid() >= 0;
}

void ignoreInterruptions() {
  for (const int number : kInterruptions) ::signal(number, SIG_IGN);
}

MessageBuffer::MessageBuffer() {
  FILE *file = std::tmpfile();
  if (file == nullptr) {
    app::printErrorLog("unable to create a temporary file for messages");
    return;
  }
  file_ = ::fcntl(::fileno(file), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  std::fclose(file);
  standardError_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  ::dup2(file_, STDOUT_FILENO);
  ::dup2(file_, STDERR_FILENO);
}

MessageBuffer::~MessageBuffer() {
  if (file_ < 0) return;
  ::dup2(standardError_, STDERR_FILENO);
  ::dup2(standardError_, STDOUT_FILENO);
  ::lseek(file_, 0, SEEK_SET);
  copyToEnd(file_, STDERR_FILENO);
  ::close(file_);
  ::close(standardError_);
}

}  // namespace cli
