#pragma once

#include <string_view>

/// How the tool itself runs: its standard streams, its session and its signals. Used by `main` and
/// the sequence of `apply` only.
namespace cli {

/// Makes sure that the three standard streams are open, connects input to the null device, and
/// sends everything that is printed from now on to standard error. Returns a descriptor of the
/// original standard output, for the result; commands do not inherit it. Stops the process if
/// there is no null device.
int separateResultFromMessages();

/// Writes the whole text, or as much as the reader takes: a result or message that nobody reads is
/// not worth an error.
void writeTo(int descriptor, std::string_view text);

/// Lets commands find only the system's own tools, whatever the caller's environment says.
void useSystemCommands();

/// Moves to a session of its own, which neither a closed terminal nor a signal to the caller's
/// process group reaches. A process that leads its group must continue as a child: then this
/// returns in the child, while the parent waits and passes on the child's exit status. Call it
/// before anything that is not safe after a fork. False when the process has stayed where it was.
[[nodiscard]] bool enterOwnSession();

/// Ignores, from now on, the signals that management engines, terminals and lost connections send
/// to end a program. Commands still start with default handling.
void ignoreInterruptions();

/// Collects what this process and its commands print, and writes it to standard error at the end. A
/// command that wrote to a lost connection itself would be killed by that, with its work half done.
class MessageBuffer {
 public:
  /// Without a temporary file, reports that and lets messages go straight to standard error.
  MessageBuffer();
  ~MessageBuffer();
  MessageBuffer(const MessageBuffer &) = delete;
  MessageBuffer &operator=(const MessageBuffer &) = delete;

 private:
  int file_ = -1;
  int standardError_ = -1;
};

}  // namespace cli
