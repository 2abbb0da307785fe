#pragma once

#include <string_view>

/// How the tool itself runs: its standard streams, its session and its signals. Used by `main` and
/// the sequence of `apply` only.
namespace cli {

/// Makes sure that the three standard streams are open, connects input to the null device, and
/// sends everything that is printed from now on to standard error. Returns a descriptor of the
/// original standard output, for the result; commands do not inherit it. Stops the process where
/// there is no null device.
int separateResultFromMessages();

/// Writes the whole text, or what the reader takes: a result or message that nobody reads is not
/// worth an error.
void writeTo(int descriptor, std::string_view text);

/// Gives commands the system's own tools only, whatever the caller's environment says.
void useSystemCommands();

/// Moves to a session of its own, which neither a closed terminal nor a signal to the caller's
/// process group reaches. Where the process leads a group, it must continue as a child: then this
/// returns in the child, and the parent waits and passes on its exit status. To be called before
/// anything that is not safe in such a child. False when the process stays where it was.
[[nodiscard]] bool enterOwnSession();

/// Ignores, from now on, the signals that management engines, terminals and lost connections send
/// to end a program. Commands still start with default handling.
void ignoreInterruptions();

/// Collects what this process and its commands print, and writes it to standard error in the end. A
/// command that writes to a lost connection itself would be ended by that, with its work half done.
class MessageBuffer {
 public:
  /// Where there is no temporary file, that is reported, and messages go to standard error at once.
  MessageBuffer();
  ~MessageBuffer();
  MessageBuffer(const MessageBuffer &) = delete;
  MessageBuffer &operator=(const MessageBuffer &) = delete;

 private:
  int file_ = -1;
  int standardError_ = -1;
};

}  // namespace cli
