#pragma once

#include <string>
#include <string_view>

namespace app {

/// Makes a write to a pipe or socket without a reader fail, instead of ending the process by
/// SIGPIPE. Call it first in `main`: if the reader of the program's output goes away in the middle
/// of Apply, the program must still start the jobs that it stopped.
void ignoreBrokenPipes();

/// Opens the null device for each standard stream that is closed. Otherwise the next file or
/// connection that the process opens would take its place, and messages would be written into it.
/// Stops the process if there is no null device.
void openStandardStreams();

/// Writes one status message and a newline to standard output and flushes it, so that it appears in
/// the right order with what the commands write there. A failed write is ignored.
void printLine(std::string_view text);

/// A text output stream on standard error. It has no state and owns nothing.
struct StderrOutputStream {
  /// Writes the UTF-8 bytes up to the first NUL and adds nothing. A failed write is ignored.
  void write(const std::string &text) const;
};

/// Stops the process because of a programming error: `what` goes to standard error as one line
/// ("fatal error: ..."), then abort(). `what` names the outlet, resource or operation concerned and
/// holds no value that may be secret. Status messages are not lost, since each was flushed.
[[noreturn]] void fatalError(std::string_view what);

}  // namespace app
