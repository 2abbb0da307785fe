#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <array>
#include <string>
#include <system_error>

/// Starting a shell as a child process. Every system call is checked: one that fails throws
/// std::system_error, whose text names the call and the cause ("pipe: Too many open files") but
/// nothing of the command. Unless it is the NoResult below, no command was run.
namespace agent {

/// The command was or may have been started, but how it ended or what it wrote is not known.
class NoResult : public std::system_error {
  using std::system_error::system_error;
};

/// Owns both ends of a pipe.
class Pipe {
 public:
  Pipe();
  ~Pipe();
  Pipe(const Pipe &) = delete;
  Pipe &operator=(const Pipe &) = delete;

  int writeEnd() const { return ends_[1]; }
  void closeWriteEnd();

  /// Blocks until every copy of the write end is closed. Throws NoResult.
  [[nodiscard]] std::string readToEnd() const;

 private:
  std::array<int, 2> ends_;
};

/// One start of a shell with one command, as the argument of "-c" and without escaping. The child
/// handles every signal by default and blocks none, and inherits only the standard streams. Both
/// strings must outlive this object.
class ShellStart {
 public:
  ShellStart(const std::string &shell, const std::string &command);

  /// Sends both output streams of the child to the pipe.
  void sendOutputTo(const Pipe &pipe);

  /// Starts a child that must be waited for.
  [[nodiscard]] pid_t start() const;

  /// Starts a process that is not our child, so that it leaves no zombie however long we run.
  /// Throws NoResult when it is not known whether it started.
  void startDetached() const;

 private:
  /// Owns the attributes of the child.
  struct Attributes {
    Attributes();
    ~Attributes();
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;
    posix_spawnattr_t value;
  };
  /// Owns the changes of the child's descriptors.
  struct FileActions {
    FileActions();
    ~FileActions();
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;
    posix_spawn_file_actions_t value;
  };

  int spawn(pid_t &child) const;

  const std::string &shell_;
  const std::string &command_;
  Attributes attributes_;
  FileActions actions_;
};

/// Waits for exactly that child, even if signals arrive. Returns its exit status, or the number
/// of the signal that ended it. Throws NoResult.
[[nodiscard]] int waitForChild(pid_t child);

}  // namespace agent
