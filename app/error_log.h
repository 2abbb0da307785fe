#pragma once

#include <chrono>
#include <string>

namespace app {

/// Writes one line to standard error: local time as "yyyy-MM-dd HH:mm:ss.SSS", one space, the
/// message up to its first NUL character, a newline. For errors that the user is not shown.
void printErrorLog(const std::string &message);

/// The time stamp of such a line, in the process's locale and time zone.
std::string errorLogTime(std::chrono::system_clock::time_point moment);

}  // namespace app
