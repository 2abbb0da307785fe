#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace agent {

/// Replaces the file at `path` as a whole: a reader sees the old content or the new one, never a
/// part and never no file. The new content goes to a temporary file in the same folder, to the
/// disk, and then takes the name.
///
/// A file that existed keeps its permissions; a new one gets 0644. A symbolic link at `path` is
/// itself replaced, never followed: the program writes no place that a link's owner chose. The
/// folder must exist. Returns no error, or the system's; then the old file stands as it was and the
/// temporary one is gone.
[[nodiscard]] std::error_code writeFileAtomically(const std::string &path,
                                                  std::string_view content);

}  // namespace agent
