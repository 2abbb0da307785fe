#pragma once

#include <string>
#include <string_view>

namespace app {

/// Writes one remark and a line end to standard output and flushes it, so that it stands in true
/// order with what the commands write to the same place. A failed write is ignored.
void printLine(std::string_view text);

/// A text output stream on standard error. It has no state and owns nothing.
struct StderrOutputStream {
  /// Writes the UTF-8 bytes up to the first NUL, adding nothing. A failed write is ignored.
  void write(const std::string &text) const;
};

/// Stops the process because of a programming error: `what` goes to standard error as one line
/// ("fatal error: ..."), then abort(). `what` names the outlet, resource or command concerned.
/// Remarks are not lost by it, since each was flushed.
[[noreturn]] void fatalError(std::string_view what);

}  // namespace app
