#pragma once

#include <string>

namespace app {

/// Writes one line to standard error: local time as "yyyy-MM-dd HH:mm:ss.SSS", one space, the
/// message as it is (cut at a NUL character), a line end. For errors that the user is not shown.
void printErrorLog(const std::string &message);

}  // namespace app
